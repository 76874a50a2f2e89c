#include "names.h"

#include <QString>
#include <algorithm>
#include <functional>

#include "failure.h"

namespace {

constexpr size_t kMostCandidates = 12;

using Meant = std::function<bool(const QString& name)>;

std::vector<size_t> Matching(const std::vector<std::string>& names, const Meant& is_meant) {
  std::vector<size_t> found;
  for (size_t i = 0; i < names.size(); ++i) {
    if (is_meant(QString::fromStdString(names[i]))) {
      found.push_back(i);
    }
  }
  return found;
}

std::string Listed(const std::vector<std::string>& names, const std::vector<size_t>& places) {
  std::string text;
  for (size_t i = 0; i < std::min(places.size(), kMostCandidates); ++i) {
    text += (i == 0 ? "\"" : ", \"") + names[places[i]] + '"';
  }
  const size_t more = places.size() - std::min(places.size(), kMostCandidates);
  return more == 0 ? text : text + " and " + std::to_string(more) + " more";
}

}  // namespace

size_t MatchName(const std::vector<std::string>& names, const std::string& text, const char* what) {
  const QString meant = QString::fromStdString(text);
  const Meant rules[] = {
      [&](const QString& name) { return name == meant; },
      [&](const QString& name) { return name.compare(meant, Qt::CaseInsensitive) == 0; },
      [&](const QString& name) { return name.startsWith(meant, Qt::CaseInsensitive); },
  };
  for (const Meant& rule : rules) {
    const std::vector<size_t> found = Matching(names, rule);
    if (found.size() == 1) {
      return found.front();
    }
    if (!found.empty()) {
      throw Failure(ExitCode::kUsage,
                    "\"" + text + "\" can be more than one " + what + ": " + Listed(names, found));
    }
  }
  std::vector<size_t> near = Matching(
      names, [&](const QString& name) { return name.contains(meant, Qt::CaseInsensitive); });
  if (near.empty()) {
    near = Matching(names, [](const QString&) { return true; });
  }
  throw Failure(ExitCode::kUsage, std::string("there is no ") + what + " \"" + text + "\"" +
                                      (near.empty() ? "" : "; there are " + Listed(names, near)));
}
