#include "collectors/cpu/models.h"

namespace cpu_collector {
namespace {

struct TVendor {
  const char* id;
  const char* maker;
};
constexpr TVendor kVendors[] = {
    {"GenuineIntel", "Intel"  },
    {"AuthenticAMD", "AMD"    },
    {"HygonGenuine", "Hygon"  },
    {"CentaurHauls", "VIA"    },
    {"Shanghai",     "Zhaoxin"}, // padded with blanks by the processor
  // itself
};

struct TImplementer {
  unsigned code;
  const char* maker;
};
constexpr TImplementer kImplementers[] = {
    {0x41, "Arm"          },
    {0x42, "Broadcom"     },
    {0x43, "Cavium"       },
    {0x46, "Fujitsu"      },
    {0x48, "HiSilicon"    },
    {0x4e, "NVIDIA"       },
    {0x50, "Applied Micro"},
    {0x51, "Qualcomm"     },
    {0x53, "Samsung"      },
    {0x56, "Marvell"      },
    {0x61, "Apple"        },
    {0x69, "Intel"        },
    {0x6d, "Microsoft"    },
    {0x70, "Phytium"      },
    {0xc0, "Ampere"       },
};

struct TPart {
  unsigned implementer;
  unsigned code;
  const char* name;
};
constexpr TPart kParts[] = {
    {0x41, 0xc07, "Cortex-A7"       },
    {0x41, 0xc09, "Cortex-A9"       },
    {0x41, 0xc0f, "Cortex-A15"      },
    {0x41, 0xd03, "Cortex-A53"      },
    {0x41, 0xd04, "Cortex-A35"      },
    {0x41, 0xd05, "Cortex-A55"      },
    {0x41, 0xd07, "Cortex-A57"      },
    {0x41, 0xd08, "Cortex-A72"      },
    {0x41, 0xd09, "Cortex-A73"      },
    {0x41, 0xd0a, "Cortex-A75"      },
    {0x41, 0xd0b, "Cortex-A76"      },
    {0x41, 0xd0c, "Neoverse-N1"     },
    {0x41, 0xd40, "Neoverse-V1"     },
    {0x41, 0xd41, "Cortex-A78"      },
    {0x41, 0xd49, "Neoverse-N2"     },
    {0x41, 0xd4a, "Neoverse-E1"     },
    {0x41, 0xd4f, "Neoverse-V2"     },
    {0x41, 0xd84, "Neoverse-V3"     },
    {0x41, 0xd8e, "Neoverse-N3"     },
    {0x42, 0x516, "ThunderX2"       },
    {0x43, 0x0a1, "ThunderX"        },
    {0x43, 0x0af, "ThunderX2"       },
    {0x46, 0x001, "A64FX"           },
    {0x48, 0xd01, "TaiShan-v110"    },
    {0x4e, 0x004, "Carmel"          },
    {0x50, 0x000, "X-Gene"          },
    {0x51, 0xc00, "Falkor"          },
    {0x61, 0x022, "Icestorm-M1"     },
    {0x61, 0x023, "Firestorm-M1"    },
    {0x6d, 0xd49, "Azure-Cobalt-100"},
    {0x70, 0x662, "FTC662"          },
    {0x70, 0x663, "FTC663"          },
    {0xc0, 0xac3, "Ampere-1"        },
    {0xc0, 0xac4, "Ampere-1a"       },
};

}  // namespace

std::optional<std::string> MakerOfVendor(const std::string& vendorId) {
  for (const TVendor& vendor : kVendors) {
    if (vendorId == vendor.id) return vendor.maker;
  }
  return std::nullopt;
}

std::optional<std::string> MakerOfImplementer(std::uint32_t implementer) {
  for (const TImplementer& row : kImplementers) {
    if (implementer == row.code) return row.maker;
  }
  return std::nullopt;
}

std::optional<std::string> NameOfPart(std::uint32_t implementer, std::uint32_t part) {
  for (const TPart& row : kParts) {
    if (implementer == row.implementer && part == row.code) return row.name;
  }
  return std::nullopt;
}

}  // namespace cpu_collector
