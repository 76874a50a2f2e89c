#pragma once

#include "fuzz/fuzz_input.h"

// The targets, each in a file of its own. A target takes whatever bytes it is given to one of the
// places where bytes from a wire or a file come in, and requires of the result what its header
// promises. It keeps nothing from one call to the next that changes what happens.

/// Both codecs of command frames, in both directions, and the pieces of a file.
void FuzzCmxCodec(FuzzInput input);
/// `CmxClient::QueryCommand` over a transport that brings any bytes in any portions.
void FuzzQueryCommand(FuzzInput input);
/// The search for frames on a serial line, for the tool and for a device, however it is cut.
void FuzzSerialStream(FuzzInput input);
/// The receiving half of a serial line over a pseudo-terminal.
void FuzzSerialSource(FuzzInput input);
/// Requests and answers over one, however late, damaged or echoed they come.
void FuzzSerialExchange(FuzzInput input);
/// What a lidar answers to a handshake and to the maintenance commands.
void FuzzDeviceAnswers(FuzzInput input);
/// A whole virtual lidar behind its codecs: what any client does to it, and what it answers.
void FuzzVirtualDevice(FuzzInput input);
/// A variable table, its pages, and what can be read, edited and written by it.
void FuzzTable(FuzzInput input);
/// A monitor table over a model's own.
void FuzzMonitorTable(FuzzInput input);
void FuzzFeatureTable(FuzzInput input);
/// An authentication table, and the rules that it has to keep to.
void FuzzAuthTable(FuzzInput input);
void FuzzAuthKeys(FuzzInput input);
void FuzzUpgradePackage(FuzzInput input);
/// A value's bytes to text and a text to bytes: lines with type, coefficient and name, then either.
void FuzzValueText(FuzzInput input);
/// The program's own settings.
void FuzzSettings(FuzzInput input);
/// A lidar's settings as a file.
void FuzzSettingsFile(FuzzInput input);
void FuzzMonitorFile(FuzzInput input);
/// A text for a support bundle, with keys, names and folders in it.
void FuzzCleanText(FuzzInput input);

/// A target by its name, which its folder of seeds has, too.
struct FuzzTarget {
  const char* name;
  void (*run)(FuzzInput);
  const char* shipped = "";  ///< more seeds: a file or folder below the source folder
};

inline constexpr FuzzTarget kFuzzTargets[] = {
    {"auth_keys", FuzzAuthKeys, "Config/auth_keys.ini"},
    {"auth_table", FuzzAuthTable, "Config/auth_config.csv"},
    {"clean_text", FuzzCleanText},
    {"cmx_codec", FuzzCmxCodec},
    {"device_answers", FuzzDeviceAnswers},
    {"feature_table", FuzzFeatureTable, "Config/feature_config.csv"},
    {"monitor_file", FuzzMonitorFile},
    {"monitor_table", FuzzMonitorTable, "Config/varID"},
    {"query_command", FuzzQueryCommand},
    {"serial_exchange", FuzzSerialExchange},
    {"serial_source", FuzzSerialSource, "tests/fuzz/seeds/serial_stream"},
    {"serial_stream", FuzzSerialStream},
    {"settings", FuzzSettings},
    {"settings_file", FuzzSettingsFile},
    {"table", FuzzTable, "Config/varID"},
    {"upgrade_package", FuzzUpgradePackage},
    {"value_text", FuzzValueText},
    {"virtual_device", FuzzVirtualDevice},
};
