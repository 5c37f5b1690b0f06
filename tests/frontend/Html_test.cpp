#include "frontend/Html.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace {

using namespace std::string_literals;

TEST(HtmlText, IsTextWhateverTheBytesAre) {
  const struct {
    std::string text;
    std::string html;
  } rows[] = {
      {"",                               ""                                                 },
      {"eth0",                           "eth0"                                             },
      {"<script>alert(\"x\")</script>",  "&lt;script&gt;alert(&quot;x&quot;)&lt;/script&gt;"},
      {"'&amp;",                         "&#39;&amp;amp;"                                   },
      {"\u00fc \u65e5\u672c \U0001F600", "\u00fc \u65e5\u672c \U0001F600"                   },
      {"a\tb\nc",                        "a\tb\nc"                                          },
      {"\0\x01\x1b\x7f"s,                "\uFFFD\uFFFD\uFFFD\uFFFD"                         },
      {"\u0085\uFFFE\uFDD0\U0010FFFF",   "\uFFFD\uFFFD\uFFFD\uFFFD"                         },
      {"\xff<\xc3",                      "\uFFFD&lt;\uFFFD"                                 },
      {"\xed\xa0\x80",                   "\uFFFD\uFFFD\uFFFD"                               }, // a surrogate
      {"\xc0\xbc",                       "\uFFFD\uFFFD"                                     }, // '<', too long
  };
  for (const auto& row : rows) EXPECT_EQ(row.html, zel::HtmlText(row.text)) << row.text;
}

TEST(Markup, EscapesAllButMarkup) {
  const zel::TMarkup bold = zel::Markup("<b>{}</b>", "a<b");
  EXPECT_EQ("<b>a&lt;b</b>", bold.html);
  EXPECT_EQ("<p title=\"&quot;\"><b>a&lt;b</b> 7</p>",
            zel::Markup("<p title=\"{}\">{} {}</p>", "\"", bold, 7).html);
}

TEST(Words, AreThoseOfANameInCamelCase) {
  const struct {
    const char* name;
    const char* words;
  } rows[] = {
      {"",                     ""                       },
      {"Name",                 "Name"                   },
      {"NumberOfEnabledCores", "Number of enabled cores"},
      {"DeviceID",             "Device ID"              },
      {"CPUs",                 "CPUs"                   },
      {"NumberOfCPUs",         "Number of CPUs"         },
      {"CPUVulnerability",     "CPU vulnerability"      },
      {"NUMANode",             "NUMA node"              },
      {"IPv4Address",          "IPv4 address"           },
      {"L1Cache",              "L1 cache"               },
      {"UUID",                 "UUID"                   },
      {"lowercase",            "lowercase"              },
  };
  for (const auto& row : rows) EXPECT_EQ(row.words, zel::Words(row.name));
}

TEST(AnchorText, NamesAnythingInAnAddressAndNothingTwice) {
  EXPECT_EQ("KVRSG_Fan.front-1", zel::AnchorText("KVRSG_Fan.front-1"));
  EXPECT_EQ("a~20b~22~3C~25~7E~C3~BC~00", zel::AnchorText("a b\"<%~\u00fc\0"s));
  std::set<std::string> anchors;
  for (int c = 0; c < 256; ++c)
    anchors.insert(zel::AnchorText(std::string(1, static_cast<char>(c))));
  EXPECT_EQ(256u, anchors.size());
}

}  // namespace
