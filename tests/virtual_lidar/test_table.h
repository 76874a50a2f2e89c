#pragma once

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "variables/config_parser.h"

/// A variable table for one test: the rows under the usual header, in a file that goes with it.
/// Columns: GroupID, Index, Get, Set, VarName, Permission, VarType, DefaultValue, Options,
/// Coefficient, VarLen, GetCmdPayload, SetCmdPayload.
inline std::shared_ptr<ConfigParser> LoadTestTable(const std::string& rows) {
  std::string folder = (std::filesystem::temp_directory_path() / "lidar-table-XXXXXX").string();
  if (mkdtemp(folder.data()) == nullptr) {
    std::abort();
  }
  const std::string path = folder + "/Test.csv";
  std::ofstream(path) << "GroupID,Index,Get,Set,VarName,Permission,VarType,DefaultValue,Options,"
                         "Coefficient,VarLen,GetCmdPayload,SetCmdPayload,SetIndex,Unit,"
                         "OptionDescription,FunctionModule,TimerUpdate,SetCoefficient\n"
                      << rows;
  auto table = std::make_shared<ConfigParser>();
  table->ExtractConfigInfo(path);
  std::filesystem::remove_all(folder);
  return table;
}

/// What most tests of a whole device use: two settings read by 0x30 and written by 0x31, network
/// settings, and an up-time.
inline constexpr char kSmallTable[] =
    "1,1,0x30,0x31,Speed,1,uint16,600,300..1200,,2,,\n"
    "1,2,0x30,0x31,Level,1,int8,-3,,,1,,\n"
    "2,1,0x20,0x21,Address,1,IP,192.168.1.201,,,4,,\n"
    "3,1,0x02,,Up-time,0,DT,0 h 0 min 5 s,,,4,,\n";
