#include "support/bytes.h"
#include "support/german_locale.h"
#include "support/table_fixture.h"
#include "variables/str_parser.h"
#include "variables/value_text.h"

namespace {

using LocaleTest = TableTest;

TEST_F(LocaleTest, NumbersKeepTheirPoint) {
  const GermanLocale locale;
  if (!locale.works()) {
    GTEST_SKIP() << "no German locale, and no localedef to make one";
  }
  EXPECT_EQ(CreateStrParser("int16")->Parse("2.5", 0.1F), (Bytes{0x00, 0x19}));
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
