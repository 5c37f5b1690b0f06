#include "zelcore/TCIMValue.h"

#include <memory>
#include <new>
#include <type_traits>
#include <utility>

#include "cim/TCIMArrayValueImpl.h"
#include "cim/TCIMNumericValueImpl.h"
#include "cim/TCIMObjectValueImpl.h"
#include "zelcore/detail/Fail.h"
#include "zelcore/detail/TypeText.h"

using zelcore::detail::Fail;
using zelcore::detail::ParseNumber;
using zelcore::detail::Text;
using zelcore::detail::TypeText;
using zelcore::detail::VisitNumeric;

// Documents hold millions of them.
static_assert(sizeof(TCIMValue) == 48);

namespace {

using TCIMType = TCIMValue::TCIMType;

TCIMType ArrayOf(TCIMType type) { return TCIMType::ECIMType(type | TCIMType::TypeArray); }
TCIMType ElementOf(TCIMType type) { return TCIMType::ECIMType(type & ~TCIMType::TypeArray); }

bool HasVariant(TCIMType type) {
  return type.IsArray() || (type >= TCIMType::TypeBoolean && type <= TCIMType::TypeReference &&
                            type != TCIMType::TypeChar);
}

// Calls `visit` with the variant, as the class that holds values of `type`.
template <class TVisitor>
auto VisitVariant(TCIMType type, TCIMValueImpl& variant, TVisitor&& visit) {
  if (type.IsArray()) return visit(static_cast<TCIMArrayValueImpl&>(variant));
  switch (type) {
    case TCIMType::TypeString: return visit(static_cast<TCIMStringValueImpl&>(variant));
    case TCIMType::TypeDateTime: return visit(static_cast<TCIMDateTimeValueImpl&>(variant));
    case TCIMType::TypeReference: return visit(static_cast<TCIMReferenceValueImpl&>(variant));
    default: return visit(static_cast<TCIMNumericValueImpl&>(variant));
  }
}

// Values that do not compare (datetimes of two kinds, or NULL inside) are not equal.
bool AreKnownEqual(const TCIMValue& a, const TCIMValue& b) {
  try {
    return a == b;
  } catch (const TZELException&) {
    return false;
  }
}

}  // namespace

TCIMValueImpl& TCIMValue::Variant() const {
  return *std::launder(reinterpret_cast<TCIMValueImpl*>(const_cast<unsigned char*>(fVariant)));
}

void TCIMValue::DestroyVariant() {
  VisitVariant(GetType(), Variant(), [](auto& variant) { std::destroy_at(&variant); });
}

void TCIMValue::TakeVariant(TCIMValue& other) noexcept {
  VisitVariant(GetType(), other.Variant(), [this](auto& variant) {
    new (fVariant) std::remove_reference_t<decltype(variant)>(std::move(variant));
    std::destroy_at(&variant);
  });
}

// The arguments must not be part of the present variant.
template <class TVariant, class... TArgs>
void TCIMValue::MakeVariant(TCIMType type, TArgs&&... args) {
  static_assert(sizeof(TVariant) <= sizeof fVariant);
  static_assert(alignof(TVariant) <= alignof(TCIMValue));
  Clear();
  fType = type;
  new (fVariant) TVariant(std::forward<TArgs>(args)...);
  fHasVariant = true;
}

TCIMValue::TCIMValue(const TCIMValue& other) : TCIMValue() { Set(other); }

// NOLINTNEXTLINE(bugprone-unhandled-self-assignment): Set() handles it
TCIMValue& TCIMValue::operator=(const TCIMValue& other) {
  Set(other);
  return *this;
}

TCIMValue::TCIMValue(bool value) : TCIMValue() { Set(value); }
TCIMValue::TCIMValue(unsigned char value) : TCIMValue() { Set(value); }
TCIMValue::TCIMValue(signed char value) : TCIMValue() { Set(value); }
TCIMValue::TCIMValue(unsigned short value) : TCIMValue() { Set(value); }
TCIMValue::TCIMValue(short value) : TCIMValue() { Set(value); }
TCIMValue::TCIMValue(unsigned int value) : TCIMValue() { Set(value); }
TCIMValue::TCIMValue(int value) : TCIMValue() { Set(value); }
TCIMValue::TCIMValue(unsigned long value) : TCIMValue() { Set(value); }
TCIMValue::TCIMValue(long value) : TCIMValue() { Set(value); }
TCIMValue::TCIMValue(float value) : TCIMValue() { Set(value); }
TCIMValue::TCIMValue(double value) : TCIMValue() { Set(value); }
TCIMValue::TCIMValue(const std::string& value) : TCIMValue() { Set(value); }
TCIMValue::TCIMValue(const char* value) : TCIMValue() { Set(value); }
TCIMValue::TCIMValue(const TCIMDateTime& value) : TCIMValue() { Set(value); }
TCIMValue::TCIMValue(const TCIMReference& value) : TCIMValue() { Set(value); }
TCIMValue::TCIMValue(TCIMReference&& value) : TCIMValue() { Set(std::move(value)); }

TCIMValue::TCIMValue(TCIMType type, unsigned int maxArraySize) : TCIMValue() {
  SetNullValue(maxArraySize == 0 ? type : ArrayOf(type), maxArraySize);
}

TCIMValue::TCIMValue(TCIMType type, unsigned int maxArraySize,
                     const std::vector<TCIMValue>& elements)
    : TCIMValue() {
  Set(type, maxArraySize, elements);
}

TCIMValue::TCIMValue(TCIMType type, const std::string& text, TContainer& container) : TCIMValue() {
  if (SetFromText(type, text)) return;
  switch (type) {
    case TCIMType::TypeDateTime: Fail(zelStatusInvalidDateTime);
    case TCIMType::TypeReference: Set(TCIMReference(&container, text)); break;
    default: Fail(zelStatusTypeMismatch);
  }
}

bool TCIMValue::SetFromText(TCIMType type, std::string_view text) {
  if (type == TCIMType::TypeString) {
    MakeVariant<TCIMStringValueImpl>(type, std::in_place, text);
    return true;
  }
  if (type == TCIMType::TypeDateTime) {
    TCIMDateTimeImpl time;
    if (!time.TrySet(text)) return false;
    MakeVariant<TCIMDateTimeValueImpl>(type, std::in_place, time);
    return true;
  }
  if (type < TCIMType::TypeBoolean || type > TCIMType::TypeReal64) return false;
  VisitNumeric(type, [&](auto tag) { SetNumber(ParseNumber<typename decltype(tag)::type>(text)); });
  return true;
}

template <class T>
void TCIMValue::SetNumber(T value) {
  MakeVariant<TCIMNumericValueImpl>(zelcore::detail::NumericCode<T>(), value);
}

void TCIMValue::Set(bool value) { SetNumber(value); }
void TCIMValue::Set(unsigned char value) { SetNumber(value); }
void TCIMValue::Set(signed char value) { SetNumber(value); }
void TCIMValue::Set(unsigned short value) { SetNumber(value); }
void TCIMValue::Set(short value) { SetNumber(value); }
void TCIMValue::Set(unsigned int value) { SetNumber(value); }
void TCIMValue::Set(int value) { SetNumber(value); }
void TCIMValue::Set(unsigned long value) { SetNumber(value); }
void TCIMValue::Set(long value) { SetNumber(value); }
void TCIMValue::Set(float value) { SetNumber(value); }
void TCIMValue::Set(double value) { SetNumber(value); }

void TCIMValue::Set(const std::string& value) {
  MakeVariant<TCIMStringValueImpl>(TCIMType::TypeString, std::in_place, value);
}

void TCIMValue::Set(const char* value) {
  MakeVariant<TCIMStringValueImpl>(TCIMType::TypeString, std::in_place, value);
}

void TCIMValue::Set(const TCIMDateTime& value) {
  MakeVariant<TCIMDateTimeValueImpl>(TCIMType::TypeDateTime, std::in_place, value);
}

void TCIMValue::Set(const TCIMReference& value) { Set(TCIMReference(value)); }

void TCIMValue::Set(TCIMReference&& value) {
  TCIMClass* const referencedClass = value.GetClass();
  MakeVariant<TCIMReferenceValueImpl>(TCIMType::TypeReference, std::in_place, std::move(value));
  fReferencedClass = referencedClass;
}

void TCIMValue::Set(TCIMType type, unsigned int maxArraySize,
                    const std::vector<TCIMValue>& elements) {
  Set(type, maxArraySize, std::vector<TCIMValue>(elements));
}

void TCIMValue::Set(TCIMType type, unsigned int maxArraySize, std::vector<TCIMValue>&& elements) {
  const TCIMType elementType = ElementOf(type);
  MakeVariant<TCIMArrayValueImpl>(ArrayOf(type), TCIMArrayValueImpl(std::move(elements)));
  fMaxArraySize = maxArraySize;
  // sic: an array that does not pass stays set.
  for (const TCIMValue& element : operator std::vector<TCIMValue>&()) {
    if (element.GetType() != elementType) {
      Fail(zelStatusInvalidProperty,
           Text("ERROR: Attempting to create array of type ", TypeText(elementType),
                ", but element is of type ", TypeText(element.GetType()), "."));
    }
  }
}

void TCIMValue::Set(const TCIMValue& other) {
  if (&other == this || AreKnownEqual(*this, other)) return;
  const TCIMType type = other.GetType();
  if (!HasVariant(type)) {
    SetNullValue(type, fMaxArraySize);
    Fail(zelStatusTypeMismatch);
  }
  if (type.IsArray()) fMaxArraySize = other.fMaxArraySize;
  if (other.IsReference()) fReferencedClass = other.fReferencedClass;
  if (other.IsNull()) return SetNullValue(type, fMaxArraySize);
  VisitVariant(type, other.Variant(), [&](const auto& variant) {
    using TVariant = std::remove_const_t<std::remove_reference_t<decltype(variant)>>;
    // `other` may be an element of this array: it is copied before this variant goes.
    MakeVariant<TVariant>(type, TVariant(variant));
  });
}

void TCIMValue::Swap(TCIMValue& other) noexcept {
  TCIMValue taken(std::move(*this));
  Take(other);
  other.Take(taken);
}

void TCIMValue::SetNullValue(TCIMType::ECIMType type, unsigned int maxArraySize) {
  Clear();
  fType = type;
  if (IsArray()) fMaxArraySize = maxArraySize;
}

void TCIMValue::SetReferencedClass(TCIMClass& cls) {
  if (!IsNull()) Fail(zelStatusInvalidOpSequence);
  fReferencedClass = &cls;
}

// The variant refuses every type but its own.
template <class T>
T TCIMValue::Convert() const {
  if (IsNull()) Fail(zelStatusValueIsNULL);
  return Variant().operator T();
}

TCIMValue::operator bool() const { return Convert<bool>(); }
TCIMValue::operator unsigned char() const { return Convert<unsigned char>(); }
TCIMValue::operator signed char() const { return Convert<signed char>(); }
TCIMValue::operator unsigned short() const { return Convert<unsigned short>(); }
TCIMValue::operator short() const { return Convert<short>(); }
TCIMValue::operator unsigned int() const { return Convert<unsigned int>(); }
TCIMValue::operator int() const { return Convert<int>(); }
TCIMValue::operator unsigned long() const { return Convert<unsigned long>(); }
TCIMValue::operator long() const { return Convert<long>(); }
TCIMValue::operator float() const { return Convert<float>(); }
TCIMValue::operator double() const { return Convert<double>(); }
TCIMValue::operator std::string() const { return Convert<std::string>(); }
TCIMValue::operator TCIMDateTime() const { return Convert<TCIMDateTime>(); }
TCIMValue::operator TCIMReference() const { return Convert<TCIMReference>(); }
TCIMValue::operator std::vector<TCIMValue>&() const { return Convert<std::vector<TCIMValue>&>(); }

std::string TCIMValue::ToString(unsigned char base) const {
  if (IsNull()) Fail(zelStatusValueIsNULL);
  return Variant().ToString(base);
}

bool TCIMValue::operator==(const TCIMValue& other) const {
  if (IsNull() != other.IsNull() || fType != other.fType) return false;
  if (!IsNull()) return Variant() == other;
  if (IsReference()) return fReferencedClass == other.fReferencedClass;
  return !IsArray() || fMaxArraySize == other.fMaxArraySize;
}

bool TCIMValue::operator<(const TCIMValue& other) const {
  if (IsNull() || other.IsNull()) return IsNull() && !other.IsNull();
  if (fType != other.fType) return fType < other.fType;
  return Variant() < other;
}
