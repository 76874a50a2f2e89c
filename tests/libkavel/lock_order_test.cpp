#include "CmxClient/lock_order.h"

#include <gtest/gtest.h>

#include <memory>
#include <mutex>
#include <vector>

#include "CmxClient/cmx_client.h"
#include "CmxClient/serial_client.h"
#include "CmxClient/ticket_mutex.h"
#include "libkavel/scripted_transport.h"

namespace kavel::lidar {
namespace {

TEST(LockOrder, EndsTheProgramThatBreaksIt) {
#ifndef TEVRON_THREAD_CHECKS
  GTEST_SKIP() << "this build does not look";
#endif
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  CmxClient client(std::make_shared<testing::ScriptedTransport>(), 1, 20, 20);
  SerialClient serial(nullptr, nullptr);
  TicketMutex sequence(Turn::kSequence);
  BriefMutex brief;
  BriefMutex other;
  std::vector<uint8_t> result;
  {
    const std::lock_guard outer(sequence);
    EXPECT_EQ(client.QueryCommand({}, result, 7, false), -1);
    const std::lock_guard inner(brief);
  }
  {
    TicketMutex line(Turn::kLine);
    const std::lock_guard lock(line);
    EXPECT_DEATH(client.QueryCommand({}, result, 7, false), "an inner one is held");
  }
  const std::lock_guard lock(brief);
  EXPECT_DEATH(client.QueryCommand({}, result, 7, false), "a brief one is held across an exchange");
  EXPECT_DEATH(serial.SendCommand(7, {}, result, 20), "a brief one is held across an exchange");
  EXPECT_DEATH(other.lock(), "two brief ones are held");
}

}  // namespace
}  // namespace kavel::lidar
