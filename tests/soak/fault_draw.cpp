#include "soak/fault_draw.h"

#include <algorithm>

#include "faults/fault_modes.h"

namespace {

// Pieces are a firmware's, and no round sends one.
bool IsOfAPiece(const QString& name) { return name.endsWith("-piece"); }
bool IsOfAHandshake(const QString& name) { return name.startsWith("auth-"); }

QString OfCommand(uint8_t code) { return '@' + QString::number(code); }

}  // namespace

int FaultDraw::Number(int least, int most) {
  // The library's distributions differ from one to the next; the remainder is the same everywhere.
  return least + static_cast<int>(random_() % static_cast<unsigned>(most - least + 1));
}

FaultDraw::Drawn FaultDraw::Next(const Target& target) {
  const std::vector<FaultMode>& modes = FaultModes();
  const auto fits = [&](size_t place) {
    const FaultMode& mode = modes[place];
    return (target.has_handshake || !IsOfAHandshake(mode.name)) &&
           (target.is_serial || mode.fault != Fault::kEcho);
  };
  if (std::none_of(left_.begin(), left_.end(), fits)) {
    for (size_t place = 0; place < modes.size(); ++place) {
      if (!IsOfAPiece(modes[place].name)) {
        left_.push_back(place);
      }
    }
  }
  size_t at = 0;
  do {
    at = static_cast<size_t>(Number(0, static_cast<int>(left_.size()) - 1));
  } while (!fits(left_[at]));
  const FaultMode& mode = modes[left_[at]];
  left_.erase(left_.begin() + static_cast<std::ptrdiff_t>(at));

  Drawn drawn;
  drawn.name = mode.name;
  int argument = Number(1, 1500);  // of a time: about the patience of a client
  if (mode.fault == Fault::kReturnCode) {
    argument = Number(0, 9);
    drawn.lies = argument == 0;
  } else if (mode.fault == Fault::kSilentAfter) {
    argument = Number(0, 40);
  }
  drawn.order = drawn.name;
  if (*mode.argument != '\0') {
    drawn.order += '=' + QString::number(argument);
  }
  if (mode.fault != Fault::kSilentAfter && !IsOfAHandshake(drawn.name)) {
    drawn.order += drawn.lies ? OfCommand(target.write_command) : Scope(target.write_command);
  }
  return drawn;
}

QString FaultDraw::Scope(uint8_t write_command) {
  switch (Number(0, 3)) {
    case 0:
      return OfCommand(write_command);
    case 1: {
      const int from = Number(1, 40);
      return QString("#%1-%2").arg(from).arg(from + Number(0, 4));
    }
    case 2:
      return "#1";
    default:
      return {};
  }
}
