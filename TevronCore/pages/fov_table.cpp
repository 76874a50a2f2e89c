#include "pages/fov_table.h"

#include <QString>

#include "CmxClient/fov_command.h"

FovTable::EditResult FovTable::Edit(int index, const std::string& text) {
  const auto position = static_cast<size_t>(index);
  if (position >= kSize) {
    return EditResult::kIgnored;
  }
  bool is_number = false;
  const double degrees = QString::fromStdString(text).toDouble(&is_number);
  // Written so that "nan", which Qt takes for a number, fails as well.
  const bool in_range = degrees >= 0.0 && degrees <= kMaxDegrees;
  if (!is_number || !in_range) {
    return EditResult::kInvalid;
  }
  edits_[position] = static_cast<float>(degrees);
  edited_[position] = true;
  return EditResult::kStored;
}

void FovTable::StoreReading(const Degrees& degrees) { reading_ = degrees; }

void FovTable::StoreReadingOf(const ConfigParser& table) {
  for (const VarInfo* var : table.WrittenBy(kFovSetCommand)) {
    Degrees degrees{};
    uint8_t mode = 0;
    if (kavel::lidar::ParseFovTable(table.ValueOf(*var).bytes, &degrees, &mode)) {
      StoreReading(degrees);
    }
  }
}

void FovTable::DropEdits() { edited_.fill(false); }

FovTable::Degrees FovTable::Shown() const {
  Degrees shown = reading_;
  for (size_t i = 0; i < kSize; ++i) {
    if (edited_[i]) {
      shown[i] = edits_[i];
    }
  }
  return shown;
}

std::vector<std::string> FovTable::Texts() const {
  std::vector<std::string> texts;
  for (const float degrees : Shown()) {
    texts.push_back(QString::number(static_cast<double>(degrees), 'g', 6).toStdString());
  }
  return texts;
}
