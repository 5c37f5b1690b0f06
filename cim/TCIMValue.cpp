#include "zelcore/TCIMValue.h"

#include <memory>
#include <utility>

#include "cim/TCIMArrayValueImpl.h"
#include "cim/TCIMNumericValueImpl.h"
#include "cim/TCIMObjectValueImpl.h"
#include "cim/TypeText.h"
#include "zelcore/detail/Fail.h"

using zelcore::detail::Fail;
using zelcore::detail::ParseNumber;
using zelcore::detail::Text;
using zelcore::detail::TypeText;
using zelcore::detail::VisitNumeric;

// Documents hold millions of them.
static_assert(sizeof(TCIMValue) == 24);

namespace {

using TCIMType = TCIMValue::TCIMType;

TCIMType ArrayOf(TCIMType type) { return TCIMType::ECIMType(type | TCIMType::TypeArray); }
TCIMType ElementOf(TCIMType type) { return TCIMType::ECIMType(type & ~TCIMType::TypeArray); }

bool HasVariant(TCIMType type) {
  return type.IsArray() || (type >= TCIMType::TypeBoolean && type <= TCIMType::TypeReference &&
                            type != TCIMType::TypeChar);
}

template <class TVariant>
TCIMValueImpl* CloneAs(const TCIMValueImpl& impl) {
  return new TVariant(static_cast<const TVariant&>(impl));
}

TCIMValueImpl* Clone(TCIMType type, const TCIMValueImpl& impl) {
  if (type.IsArray()) return CloneAs<TCIMArrayValueImpl>(impl);
  switch (type) {
    case TCIMType::TypeString: return CloneAs<TCIMStringValueImpl>(impl);
    case TCIMType::TypeDateTime: return CloneAs<TCIMDateTimeValueImpl>(impl);
    case TCIMType::TypeReference: return CloneAs<TCIMReferenceValueImpl>(impl);
    default: return CloneAs<TCIMNumericValueImpl>(impl);
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

TCIMValue::TCIMValue()
    : fType(TCIMType::TypeNone), fMaxArraySize(0), fImpl(nullptr), fReferencedClass(nullptr) {}

TCIMValue::TCIMValue(const TCIMValue& other) : TCIMValue() { Set(other); }

TCIMValue::TCIMValue(TCIMValue&& other) noexcept
    : fType(std::exchange(other.fType, TCIMType::TypeNone)),
      fMaxArraySize(std::exchange(other.fMaxArraySize, 0)),
      fImpl(std::exchange(other.fImpl, nullptr)),
      fReferencedClass(std::exchange(other.fReferencedClass, nullptr)) {}

TCIMValue::~TCIMValue() { delete fImpl; }

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
  switch (type) {
    case TCIMType::TypeString: Set(text); break;
    case TCIMType::TypeDateTime:
      Replace(type, new TCIMDateTimeValueImpl(std::in_place, text));
      break;
    case TCIMType::TypeReference: Set(TCIMReference(&container, text)); break;
    case TCIMType::TypeChar: Fail(zelStatusTypeMismatch);
    default:
      VisitNumeric(type, [&](auto tag) { Set(ParseNumber<typename decltype(tag)::type>(text)); });
  }
}

void TCIMValue::Replace(TCIMType type, TCIMValueImpl* impl) {
  fType = type;
  delete std::exchange(fImpl, impl);
}

template <class T>
void TCIMValue::SetNumber(T value) {
  Replace(zelcore::detail::NumericCode<T>(), new TCIMNumericValueImpl(value));
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
  Replace(TCIMType::TypeString, new TCIMStringValueImpl(std::in_place, value));
}

void TCIMValue::Set(const char* value) {
  Replace(TCIMType::TypeString, new TCIMStringValueImpl(std::in_place, value));
}

void TCIMValue::Set(const TCIMDateTime& value) {
  Replace(TCIMType::TypeDateTime, new TCIMDateTimeValueImpl(std::in_place, value));
}

void TCIMValue::Set(const TCIMReference& value) { Set(TCIMReference(value)); }

void TCIMValue::Set(TCIMReference&& value) {
  TCIMClass* const referencedClass = value.GetClass();
  Replace(TCIMType::TypeReference, new TCIMReferenceValueImpl(std::in_place, std::move(value)));
  fReferencedClass = referencedClass;
}

void TCIMValue::Set(TCIMType type, unsigned int maxArraySize,
                    const std::vector<TCIMValue>& elements) {
  Set(type, maxArraySize, std::vector<TCIMValue>(elements));
}

void TCIMValue::Set(TCIMType type, unsigned int maxArraySize, std::vector<TCIMValue>&& elements) {
  const TCIMType elementType = ElementOf(type);
  Replace(ArrayOf(type), new TCIMArrayValueImpl(std::move(elements)));
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
  const TCIMType type = other.fType;
  if (!HasVariant(type)) {
    Replace(type, nullptr);
    Fail(zelStatusTypeMismatch);
  }
  // `other` may be an element of this array: everything is read before Replace() deletes it.
  TCIMValueImpl* const copy = other.fImpl ? Clone(type, *other.fImpl) : nullptr;
  if (type.IsArray()) fMaxArraySize = other.fMaxArraySize;
  if (other.IsReference()) fReferencedClass = other.fReferencedClass;
  Replace(type, copy);
}

void TCIMValue::Swap(TCIMValue& other) noexcept {
  std::swap(fType, other.fType);
  std::swap(fMaxArraySize, other.fMaxArraySize);
  std::swap(fImpl, other.fImpl);
  std::swap(fReferencedClass, other.fReferencedClass);
}

void TCIMValue::SetNullValue(TCIMType::ECIMType type, unsigned int maxArraySize) {
  Replace(type, nullptr);
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
  return fImpl->operator T();
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
  return fImpl->ToString(base);
}

bool TCIMValue::operator==(const TCIMValue& other) const {
  if (IsNull() != other.IsNull() || fType != other.fType) return false;
  if (!IsNull()) return *fImpl == other;
  if (IsReference()) return fReferencedClass == other.fReferencedClass;
  return !IsArray() || fMaxArraySize == other.fMaxArraySize;
}

bool TCIMValue::operator<(const TCIMValue& other) const {
  if (IsNull() || other.IsNull()) return IsNull() && !other.IsNull();
  if (fType != other.fType) return static_cast<int>(fType) < static_cast<int>(other.fType);
  return *fImpl < other;
}
