#include "pages/fov_table.h"

#include <QString>
#include <QStringList>
#include <algorithm>

#include "CmxClient/fov_command.h"
#include "variables/command_code.h"

namespace {

std::string TextOf(float degrees) {
  return QString::number(static_cast<double>(degrees), 'g', 6).toStdString();
}

/// Nothing for a text that is no number in [0, 360].
std::optional<float> AngleOf(const QString& text) {
  bool is_number = false;
  const double degrees = text.toDouble(&is_number);
  // Written so that "nan", which Qt takes for a number, fails as well.
  const bool in_range = degrees >= 0.0 && degrees <= FovTable::kMaxDegrees;
  return is_number && in_range ? std::optional(static_cast<float>(degrees)) : std::nullopt;
}

}  // namespace

FovTable::FovTable(const ConfigParser& table) : table_(table) {
  for (const VarInfo* var : table.InTableOrder()) {
    if (IsCommand(var->set_cmd, kavel::lidar::kFovCommand)) {
      variable_ = var;
      return;
    }
  }
}

FovTable::EditResult FovTable::Edit(int index, const std::string& text) {
  const auto position = static_cast<size_t>(index);
  if (position >= kSize || variable_ == nullptr) {
    return EditResult::kIgnored;
  }
  const std::optional<float> angle = AngleOf(QString::fromStdString(text));
  if (!angle) {
    return EditResult::kInvalid;
  }
  const std::optional<Setting> held = Held();
  if (held && TextOf(held->degrees[position]) == TextOf(*angle)) {
    edits_[position].reset();
  } else {
    edits_[position] = angle;
  }
  return EditResult::kStored;
}

void FovTable::DropEdits() { edits_.fill(std::nullopt); }

bool FovTable::HasEdits() const {
  return std::any_of(edits_.begin(), edits_.end(),
                     [](const std::optional<float>& edit) { return edit.has_value(); });
}

std::optional<FovTable::Setting> FovTable::Held() const {
  Setting held;
  if (variable_ == nullptr ||
      !kavel::lidar::ParseFovTable(table_.ValueOf(*variable_).bytes, &held.degrees, &held.mode)) {
    return std::nullopt;
  }
  return held;
}

std::optional<FovTable::Setting> FovTable::ToSend() const {
  std::optional<Setting> setting = Held();
  if (setting) {
    for (size_t i = 0; i < kSize; ++i) {
      setting->degrees[i] = edits_[i].value_or(setting->degrees[i]);
    }
  }
  return setting;
}

std::vector<std::string> FovTable::Texts() const {
  const std::optional<Setting> held = Held();
  std::vector<std::string> texts;
  for (size_t i = 0; i < kSize; ++i) {
    const std::optional<float> degrees =
        edits_[i] || !held ? edits_[i] : std::optional(held->degrees[i]);
    texts.push_back(degrees ? TextOf(*degrees) : "");
  }
  return texts;
}

std::string FovTexts(const FovTable::Degrees& degrees) {
  std::string texts;
  for (const float angle : degrees) {
    texts += (texts.empty() ? "" : ", ") + TextOf(angle);
  }
  return texts;
}

bool ParseFovTexts(const std::string& text, FovTable::Degrees* degrees) {
  const QStringList texts = QString::fromStdString(text).split(',');
  FovTable::Degrees parsed{};
  for (size_t i = 0; i < parsed.size(); ++i) {
    const std::optional<float> angle = AngleOf(texts.value(static_cast<int>(i)));
    if (!angle) {
      return false;
    }
    parsed[i] = *angle;
  }
  if (static_cast<size_t>(texts.size()) != parsed.size()) {
    return false;
  }
  *degrees = parsed;
  return true;
}
