#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace cpu_collector {

// Names behind the codes that a processor tells; nothing for codes that the tables do not hold.

// The maker by the vendor text of an x86 processor: "AuthenticAMD" is "AMD".
std::optional<std::string> MakerOfVendor(const std::string& vendorId);

// The maker and the name of an Arm core by the codes of its identification register.
std::optional<std::string> MakerOfImplementer(std::uint32_t implementer);
std::optional<std::string> NameOfPart(std::uint32_t implementer, std::uint32_t part);

}  // namespace cpu_collector
