#include "frontend/Units.h"

#include <string_view>

#include "frontend/ValueMatch.h"

namespace zel {
namespace {

struct TRow {
  std::string_view name;  // in lower case
  const char* symbol;
};

constexpr TRow kMultiples[] = {
    {"peta",  "P"     },
    {"tera",  "T"     },
    {"giga",  "G"     },
    {"mega",  "M"     },
    {"kilo",  "k"     },
    {"milli", "m"     },
    {"micro", "\u00B5"},
    {"nano",  "n"     },
    {"",      ""      }
};

constexpr TRow kUnits[] = {
    {"hertz",                  "Hz"     },
    {"transfers per second",   "T/s"    },
    {"volts",                  "V"      },
    {"amps",                   "A"      },
    {"watts",                  "W"      },
    {"watthours",              "Wh"     },
    {"degreesc",               "\u00B0C"},
    {"degrees c",              "\u00B0C"},
    {"revolutions per minute", "RPM"    },
    {"percent",                "%"      },
    {"percentage",             "%"      },
    {"seconds",                "s"      },
    {"minutes",                "min"    },
    {"hours",                  "h"      }
};

}  // namespace

std::string UnitSymbol(const std::string& unit) {
  const std::string lower = LowerCase(unit);
  const std::string_view whole = lower;
  for (const TRow& multiple : kMultiples) {
    if (whole.substr(0, multiple.name.size()) != multiple.name) continue;
    for (const TRow& row : kUnits) {
      if (whole.substr(multiple.name.size()) == row.name) {
        return std::string(multiple.symbol) + row.symbol;
      }
    }
  }
  return unit;
}

}  // namespace zel
