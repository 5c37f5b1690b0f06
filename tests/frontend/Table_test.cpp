#include "frontend/Table.h"

#include <gtest/gtest.h>

#include <sstream>

#include "frontend/Utf8.h"

namespace {

using zel::TLook;
using zel::TTable;

constexpr char kBroken[] = "a\xFFz";

TEST(WidthOf, CountsColumnsInAnyLocale) {
  const struct {
    const char* text;
    std::size_t width;
  } rows[] = {
      {"",                 0},
      {"abc",              3},
      {"Prüfstand",       9},
      {"25 °C",           5},
      {"e\u0301",          1}, // a combining acute accent
      {"日本",           4},
      {"한국",           4},
      {"Ｗ",              2}, // full width
      {"\U0001F600",       2},
      {"\U00020000",       2},
      {"zero\u200Bwidth",  9},
      {"…",              1},
      {kBroken,            3}, // a byte that is no UTF-8 takes a column
      {"\xE6\x97",         2}, // cut in the middle of a character
      {"\xC0\x80",         2}, // longer than needed
      {"\xED\xA0\x80",     3}, // half a surrogate pair
      {"\xF4\x90\x80\x80", 4}, // above the last character
  };
  for (const auto& row : rows) EXPECT_EQ(row.width, zel::WidthOf(row.text)) << row.text;
}

TEST(FirstCharacter, TellsCodeAndBytes) {
  const struct {
    const char* text;
    char32_t code;
    std::size_t size;
  } rows[] = {
      {"A",                'A',               1},
      {"é",               0xE9,              2},
      {"日",              0x65E5,            3},
      {"\U0001F600x",      0x1F600,           4},
      {"\x80",             zel::kNoCharacter, 1},
      {"\xC3(",            zel::kNoCharacter, 1},
      {"\xE0\x80\x80",     zel::kNoCharacter, 1},
      {"\xF8\x88\x80\x80", zel::kNoCharacter, 1},
  };
  for (const auto& row : rows) {
    const zel::TCharacter character = zel::FirstCharacter(row.text);
    EXPECT_EQ(row.code, character.code) << row.text;
    EXPECT_EQ(row.size, character.size) << row.text;
  }
}

TEST(Fitted, CutsBetweenCharactersAndSaysSo) {
  const struct {
    const char* text;
    std::size_t width;
    const char* fitted;
  } rows[] = {
      {"abc",                   3, "abc"       },
      {"abcd",                  3, "ab…"     },
      {"abcd",                  1, "…"       },
      {"日本語",             6, "日本語" },
      {"日本語",             5, "日本…" },
      {"日本語",             4, "日…"    }, // half a character is no character
      {"e\u0301e\u0301e\u0301", 2, "e\u0301…"},
      {"",                      0, ""          },
  };
  for (const auto& row : rows) EXPECT_EQ(row.fitted, zel::Fitted(row.text, row.width)) << row.text;
  EXPECT_EQ("ab...", zel::Fitted("abcdef", 5, false));
  EXPECT_EQ("..", zel::Fitted("abc", 2, false));
  EXPECT_EQ("\u65E5...", zel::Fitted("\u65E5\u672C\u8A9E", 5, false));
  EXPECT_EQ("abc", zel::Fitted("abc", 3, false));
}

TTable Disks() {
  TTable table({
      {"Name",                           false},
      {"Size",                           true },
      {"Model and where it was mounted", false}
  });
  table.AddRow({{"sda"}, {"9 GB"}, {"Größte"}});
  table.AddRow({
      {"日本"       },
      {"not available", TLook::kMissing},
      {"A much longer name of a disk"              }
  });
  return table;
}

std::string Printed(const TTable& table, const zel::TTerminal& terminal, std::size_t hidden = 0) {
  std::ostringstream out;
  EXPECT_EQ(hidden, table.Print(out, terminal));
  return out.str();
}

TEST(Table, IsAsWideAsItsTextsOffATerminal) {
  EXPECT_EQ(
      "  Name           Size  Model and where it was mounted\n"
      "  sda            9 GB  Größte\n"
      "  日本  not available  A much longer name of a disk\n",
      Printed(Disks(), {}));
}

TEST(Table, CutsWideColumnsOnATerminal) {
  EXPECT_EQ(
      "  Name           Size  Model and where i…\n"
      "  sda            9 GB  Größte\n"
      "  日本  not available  A much longer nam…\n",
      Printed(Disks(), {false, 41}));
}

TEST(Table, LeavesOutTheLastColumnsWhenThereIsNoRoom) {
  EXPECT_EQ(
      "  Name           Size\n"
      "  sda            9 GB\n"
      "  日本  not available\n",
      Printed(Disks(), {false, 38}, 1));
  EXPECT_EQ(
      "  …\n"
      "  …\n"
      "  …\n",
      Printed(Disks(), {false, 3}, 2));
  EXPECT_EQ("\n", Printed(TTable({}), {false, 80}));
}

TEST(Table, UsesColourWhereThereIsSome) {
  TTable table({
      {"A", false}
  });
  table.AddRow({
      {"x", TLook::kMissing}
  });
  table.AddRow({{"y"}});
  EXPECT_EQ(
      "  \033[4mA\033[0m\n"
      "  \033[2mx\033[0m\n"
      "  y\n",
      Printed(table, {true, 80}));
}

}  // namespace
