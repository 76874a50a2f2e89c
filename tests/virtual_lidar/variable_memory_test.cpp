#include "device/variable_memory.h"

#include "lidar_under_test.h"

namespace {

int ReturnCode(VariableMemory* memory, uint8_t command, const Bytes& payload) {
  const auto outcome = memory->Execute(command, payload, 0);
  return outcome ? outcome->return_code : int{kUnknownCommand};
}

TEST(VariableMemory, ReadsGroupsByCommandAndPayloadInTableOrder) {
  const auto table = LoadRows(
      "2,1,0x32,,,First,0,uint8,1,,,,,,1,,,0x0001\n"
      "1,1,0x32,,,Other,0,uint8,9,,,,,,1,,,0x0002\n"
      "1,2,0x32,,,Second,0,uint16,515,,,,,,2,,,0x0001\n"
      "3,1,0x5A0101,,,Far,0,uint8,7,,,,,,1,,,0x0003\n");
  VariableMemory memory(*table);
  EXPECT_EQ(memory.Execute(0x32, {0, 1}, 0)->payload, (Bytes{1, 2, 3}));
  EXPECT_EQ(memory.Execute(0x32, {0, 2}, 0)->payload, (Bytes{9}));
  EXPECT_EQ(memory.Execute(0xFF, {0x5A, 0x01, 0x01, 0x00, 0x03}, 0)->payload, (Bytes{7}));

  EXPECT_EQ(ReturnCode(&memory, 0x32, {}), kBadLength);
  EXPECT_EQ(ReturnCode(&memory, 0x32, {0, 3}), kBadValue);
  EXPECT_EQ(ReturnCode(&memory, 0xFF, {0x5A, 0x01, 0x02}), kUnknownCommand);
}

TEST(VariableMemory, WritesAllFieldsOfACommandOrNone) {
  const auto table = LoadRows(
      "1,1,0x30,0x31,,Speed,1,uint16,600,300..1200,,,,,2\n"
      "1,2,0x30,0x31,,Fixed,0,uint8,5,,,,,,1\n"
      "1,3,0x30,0x31,,Choice,1,uint8,1,1|3,,,,,1\n"
      "1,4,,0x5A0102,,Far,1,uint8,0,0..9,,,,,1,,,,0xA0\n");
  VariableMemory memory(*table);
  EXPECT_EQ(ReturnCode(&memory, 0x31, {0x04, 0xB0, 99, 3}), kAccepted);
  EXPECT_EQ(ReturnCode(&memory, 0x31, {0x01, 0x2C, 5, 2}), kBadValue);
  EXPECT_EQ(ReturnCode(&memory, 0x31, {0x04, 0xB1, 5, 1}), kBadValue);
  EXPECT_EQ(ReturnCode(&memory, 0x31, {0x01, 0x2C, 5}), kBadLength);
  EXPECT_EQ(ReturnCode(&memory, 0x31, {0x01, 0x2C, 5, 1, 0}), kBadLength);
  EXPECT_EQ(memory.Execute(0x30, {}, 0)->payload, (Bytes{0x04, 0xB0, 5, 3}))
      << "the first write, and of it only what may be written";

  EXPECT_EQ(ReturnCode(&memory, 0xFF, {0x5A, 0x01, 0x02, 0xA0, 9}), kAccepted);
  EXPECT_EQ(HeldIn(memory, "Far"), (Bytes{9}));
  EXPECT_EQ(ReturnCode(&memory, 0xFF, {0x5A, 0x01, 0x02, 9}), kUnknownCommand);
}

TEST(VariableMemory, ChecksValuesAsTheTableSays) {
  const auto table = LoadRows(
      "1,1,,0x40,,Scaled,1,int16,0,-100..100,,0.25,,,2\n"
      "2,1,,0x41,,Gate,1,uint8,0,switch,,,,,1\n"
      "2,2,,0x41,,Gated,1,uint8,10,10..20@2-1,,,,,1\n"
      "3,1,,0x42,,Heater,1,uint8,0,switch:10..90,,,,,1\n"
      "4,1,,0x43,,Power,1,float32,1,0..5,,,,,4\n"
      "4,2,,0x45,,Exact,1,u64,0,0..10,,0.1,,,\n"
      "4,3,,0x46,,Steps,1,i32,0,-10..10,,4,,,\n"
      "5,1,0x4A,0x44,,Shared Secret Key,1,raw,,,,,,,16\n"
      "6,1,0x2C,0x22,,FOV Table,1,raw,,,,,,,42\n");
  VariableMemory memory(*table);
  const std::tuple<uint8_t, Bytes, uint8_t> cases[] = {
      {0x40, {0x01, 0x90}, kAccepted},  // 400 x 0.25 = 100
      {0x40, {0x01, 0x91}, kBadValue},
      {0x40, {0xFE, 0x70}, kAccepted},  // -400 x 0.25
      {0x40, {0xFE, 0x6F}, kBadValue},
      {0x41, {0, 200}, kAccepted},  // switched off: not checked
      {0x41, {1, 21}, kBadValue},
      {0x41, {1, 20}, kAccepted},
      {0x42, {0}, kAccepted},
      {0x42, {9}, kBadValue},
      {0x42, {10}, kAccepted},
      {0x43, {0x40, 0xA0, 0, 0}, kAccepted},          // 5.0
      {0x43, {0x7F, 0xC0, 0, 0}, kBadValue},          // not a number
      {0x45, {0, 0, 0, 0, 0, 0, 0, 100}, kAccepted},  // 10.0
      {0x45, {0, 0, 0, 0, 0, 0, 0, 101}, kBadValue},
      {0x45, Bytes(8, 0xFF), kBadValue},
      {0x46, {0xFF, 0xFF, 0xFF, 0xFE}, kAccepted},  // -8
      {0x46, {0, 0, 0, 3}, kBadValue},              // 12, half a step too far
      {0x44, Bytes(257, 1), kBadLength},
      {0x44, Bytes(256, 1), kAccepted},
  };
  for (const auto& [command, payload, return_code] : cases) {
    EXPECT_EQ(ReturnCode(&memory, command, payload), return_code)
        << std::hex << int{command} << " " << int{payload[0]};
  }
  EXPECT_EQ(HeldIn(memory, "Shared Secret Key"), Bytes(256, 1)) << "as long as it was written";
  EXPECT_EQ(memory.Execute(0x4A, {}, 0)->payload, Bytes(16, 1));

  Bytes fov = memory.Execute(0x2C, {}, 0)->payload;
  fov[0] = 2;
  EXPECT_EQ(ReturnCode(&memory, 0x22, fov), kAccepted);
  EXPECT_EQ(memory.Execute(0x2C, {}, 0)->payload, fov);
  fov[2] = 0x44;  // 512 degrees
  EXPECT_EQ(ReturnCode(&memory, 0x22, fov), kBadValue);
}

}  // namespace
