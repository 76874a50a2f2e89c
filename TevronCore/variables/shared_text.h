#pragma once

#include <functional>
#include <set>
#include <string>
#include <string_view>

/// A text that stands once in memory for all that have it. Reads as the text that it is, and as
/// the empty one until it is given another. Valid as long as the TextPool that it comes from.
class SharedText {
 public:
  SharedText() = default;

  const std::string& str() const { return *text_; }
  bool empty() const { return text_->empty(); }
  operator const std::string&() const { return *text_; }
  operator std::string_view() const { return *text_; }

 private:
  friend class TextPool;
  explicit SharedText(const std::string* text) : text_(text) {}

  static inline const std::string kEmpty;
  const std::string* text_ = &kEmpty;
};

inline bool operator==(const SharedText& a, std::string_view b) { return a.str() == b; }
inline bool operator!=(const SharedText& a, std::string_view b) { return a.str() != b; }

/// Texts, each held once. Moving the pool keeps what it gave out valid.
class TextPool {
 public:
  SharedText Share(std::string_view text) {
    const auto found = texts_.lower_bound(text);
    return SharedText(found != texts_.end() && *found == text ? &*found
                                                              : &*texts_.emplace_hint(found, text));
  }

 private:
  std::set<std::string, std::less<>> texts_;
};
