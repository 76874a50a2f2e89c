#include "device/measurement.h"

#include <algorithm>
#include <cmath>

#include "lidar_under_test.h"
#include "variables/number_text.h"
#include "variables/value_text.h"

namespace {

double NumberOf(const VarInfo& var, const Bytes& bytes) {
  std::string text;
  std::string fault;
  EXPECT_TRUE(DecodeValue(var, bytes, &text, &fault)) << fault;
  return DecimalNumber<double>(text).value_or(std::nan(""));
}

TEST(Measurement, MovesAroundItsStartWithASpikeNowAndThen) {
  const auto table = LoadRows(
      "1,1,0x30,,,Warm,0,int16,46.20,,°C,0.01\n"
      "1,2,0x30,,,Cold,0,int8,-128,,°C\n"
      "1,3,0x30,,,Full,0,uint8,255\n"
      "1,4,0x30,,,Power,0,float32,74.50,,mW\n"
      "1,5,0x30,,,Fine,0,i32,-152.250,,V,0.001\n"
      "1,6,0x30,,,Still,0,uint8,1,0|1\n"
      "1,7,0x30,,,Name,0,string,abc,,,,,,4\n"
      "2,1,0x30,,,Count,0,uint32,100\n");
  const VariableMemory memory(*table);
  const Measurement measurement(7);
  for (const VariableMemory::Cell& cell : memory.cells()) {
    const VarInfo& var = *cell.var;
    SCOPED_TRACE(var.var_name);
    EXPECT_EQ(Measurement(0).At(50, var, cell.value), cell.value);
    EXPECT_EQ(Measurement(7).At(50, var, cell.value), measurement.At(50, var, cell.value));
    if (var.var_name == "Still" || var.var_name == "Name") {
      EXPECT_EQ(measurement.At(50, var, cell.value), cell.value);
      continue;
    }
    const double start = NumberOf(var, cell.value);
    const double step = var.var_name == "Power" ? 0.01 : double{var.coefficient};
    const double span = std::max(std::abs(start) * 0.02, 4 * step);
    double furthest = 0;
    double before = start;
    for (uint32_t second = 0; second < 2000; ++second) {
      const double now = NumberOf(var, measurement.At(second, var, cell.value));
      if (var.var_name == "Count") {
        EXPECT_GE(now, before);
        before = now;
      } else {
        EXPECT_LE(std::abs(now - start), 4.5 * span);
      }
      furthest = std::max(furthest, std::abs(now - start));
    }
    EXPECT_GT(furthest, 1.5 * span) << "further than drift and noise go";
  }
}

TEST(Measurement, IsReadAndHeldAlikeAndStartsAnewAfterAReset) {
  const auto table = LoadRows(
      "1,1,0x30,,,Block,0,string,A,monitor,,,,Watch,4\n"
      "1,2,0x30,,,Warm,0,int16,4620,,,,,Watch\n"
      "2,1,0x31,,,Elsewhere,0,int16,4620,,,,,Page\n");
  DeviceProfile profile;
  profile.model = "Test";
  profile.hardware = "B2";
  profile.seed = 1;
  auto now = std::chrono::steady_clock::time_point();
  VirtualDevice device(table, std::move(profile), [&now] { return now; });
  const Bytes first = Ask(&device, 0x30).payload;
  EXPECT_TRUE(device.TakeChanged());
  EXPECT_EQ(Bytes(first.begin(), first.begin() + 4), (Bytes{'B', '2', 0, 0}));
  now += std::chrono::seconds(30);
  const Bytes second = Ask(&device, 0x30).payload;
  EXPECT_NE(second, first);
  EXPECT_EQ(HeldIn(device.memory(), "Warm"), Bytes(second.begin() + 4, second.end()));
  Ask(&device, 0x25);
  EXPECT_EQ(Ask(&device, 0x30).payload, second) << "the same moment of the same device";
  EXPECT_EQ(Ask(&device, 0x31).payload, (Bytes{0x12, 0x0C}));
}

}  // namespace
