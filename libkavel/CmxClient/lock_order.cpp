#include "CmxClient/lock_order.h"

#include <cstdio>
#include <cstdlib>

namespace kavel::lidar {
namespace {

thread_local bool holds_brief = false;
thread_local unsigned held_turns = 0;  // a bit each

void Require(bool is_kept, const char* rule) {
  if (!is_kept) {
    std::fprintf(stderr, "A lock is taken out of order: %s.\n", rule);
    std::abort();
  }
}

unsigned BitOf(Turn turn) { return 1U << static_cast<unsigned>(turn); }

}  // namespace

void HeldLocks::TakeTurn(Turn turn) {
  Require(!holds_brief, "a brief one is held across an exchange");
  Require(held_turns < BitOf(turn), "an inner one is held, or the same one");
  held_turns |= BitOf(turn);
}

void HeldLocks::EndTurn(Turn turn) { held_turns &= ~BitOf(turn); }

void HeldLocks::TakeBrief() {
  Require(!holds_brief, "two brief ones are held");
  holds_brief = true;
}

void HeldLocks::EndBrief() { holds_brief = false; }

}  // namespace kavel::lidar
