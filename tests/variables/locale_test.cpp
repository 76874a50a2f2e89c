#include <locale.h>
#include <stdlib.h>

#include <clocale>

#include "variables/str_parser.h"
#include "variables/table_test.h"
#include "variables/value_text.h"

namespace {

using Bytes = std::vector<uint8_t>;

// A locale with a decimal comma: the system's, or one made for the occasion.
class GermanLocale : public TableTest {
 protected:
  void SetUp() override {
    if (std::setlocale(LC_ALL, "de_DE.UTF-8") == nullptr && !MakeLocale()) {
      GTEST_SKIP() << "this machine has no de_DE locale and cannot make one (localedef)";
    }
    ASSERT_STREQ(localeconv()->decimal_point, ",");
  }
  void TearDown() override {
    std::setlocale(LC_ALL, "C");
    unsetenv("LOCPATH");
  }

 private:
  bool MakeLocale() {
    const std::string path = folder_.folder() + "/de_DE.UTF-8";
    const std::string command = "localedef -i de_DE -f UTF-8 '" + path + "' >/dev/null 2>&1";
    // localedef warns with a non-zero result; whether the locale loads is what counts.
    (void)!std::system(command.c_str());  // NOLINT(bugprone-command-processor)
    setenv("LOCPATH", folder_.folder().c_str(), 1);
    return std::setlocale(LC_ALL, "de_DE.UTF-8") != nullptr;
  }

  TableFile folder_{""};
};

TEST_F(GermanLocale, NumbersKeepTheirPoint) {
  EXPECT_EQ(CreateStrParser("int16")->Parse("2.5", 0.1F), (Bytes{0x00, 0x19}));
  EXPECT_EQ(CreateStrParser("float32")->Parse("0.5", 1.0F), (Bytes{0x3F, 0, 0, 0}));
  EXPECT_EQ(CreateStrParser("double")->Parse("0.5", 1.0F), (Bytes{0x3F, 0xE0, 0, 0, 0, 0, 0, 0}));
  EXPECT_THROW(CreateStrParser("float32")->Parse("0,5", 1.0F), std::invalid_argument);

  Load("1,1,0x01,,,A,0,uint16,,,,0.01\n");
  EXPECT_TRUE(parser_.Faults().empty());
  std::string text;
  std::string fault;
  EXPECT_TRUE(DecodeValue(Var("A"), {0x04, 0xD2}, &text, &fault));
  EXPECT_EQ(text, "12.34");
}

}  // namespace
