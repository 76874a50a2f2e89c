#pragma once

#include "support/bytes.h"
#include "support/test_folder.h"

inline constexpr char kTestAes128Key[] = "2b7e151628aed2a6abf7158809cf4f3c";
inline constexpr char kTestAes256Key[] =
    "603deb1015ca71be2b73aef0857d77811f352c073b6108d72d9810a30914dff4";

/// The header row of the table of authentication.
inline constexpr char kAuthTableHeader[] =
    "Model,Enable,AlgorithmID,ProbeCmd,ChallengeCmd,ResponseCmd,ProtectedCmds,ProbeValueOffset,"
    "ProbeValueLen,ProbeEndian\n";

/// An install root with a key file.
struct KeyedRoot : InstallRoot {
  explicit KeyedRoot(const std::string& extra = "") { WriteKeys(extra); }
  void WriteKeys(const std::string& extra) const {
    Write("Config/auth_keys.ini", std::string("[keys]\naes128_key=") + kTestAes128Key +
                                      "\naes256_key=" + kTestAes256Key +
                                      "\nmaskword_1=61732650\nmaskword_2=0x613CD1CF\n"
                                      "mix_c1=ea980b8d\nmix_c2=b2553f5\n" +
                                      extra);
  }
};
