#pragma once

#include <cstring>
#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

#include "zelcore/detail/Export.h"

class TCIMClass;
class TCIMDateTime;
class TCIMReference;
class TCIMValueImpl;
class TContainer;

// NOLINTBEGIN(google-explicit-constructor): native values and values convert into each other

// One typed CIM value: of a property, a qualifier, a key binding, an array element.
//
// A value has a CIM type, may be NULL (typed but without data) and may be an array. It is strict:
// it converts only to the native type that matches its CIM type exactly, and every misuse throws
// TZELException. Copies are deep.
class ZEL_API TCIMValue {
 public:
  // A type code: one of the fifteen scalar codes, with TypeArray added for arrays of it.
  class ZEL_API TCIMType {
   public:
    enum ECIMType : unsigned int {
      TypeNone = 0,
      TypeBoolean = 1,
      TypeUint8 = 2,
      TypeSint8 = 3,
      TypeUint16 = 4,
      TypeSint16 = 5,
      TypeUint32 = 6,
      TypeSint32 = 7,
      TypeUint64 = 8,
      TypeSint64 = 9,
      TypeReal32 = 10,
      TypeReal64 = 11,
      TypeChar = 12,  // reserved: no value of it can be set or compared
      TypeString = 13,
      TypeDateTime = 14,
      TypeReference = 15,
      TypeArray = 16,  // flag
    };

    TCIMType(ECIMType code) : fCode(code) {}

    // The type named "boolean", "uint8" ... "real64", "string" or "datetime", in any case.
    // Throws zelStatusTypeMismatch for every other text, "reference" and "char" included.
    TCIMType(const std::string& name);

    operator ECIMType() const { return fCode; }

    bool IsArray() const { return (fCode & TypeArray) != 0; }

    // The name of the (element) type; that it is an array does not show. Throws
    // zelStatusTypeMismatch for TypeNone and for codes above TypeReference.
    std::string ToString() const;

   private:
    ECIMType fCode;
  };

  // Untyped and NULL.
  TCIMValue()
      : fType(TCIMType::TypeNone), fHasVariant(0), fMaxArraySize(0), fReferencedClass(nullptr) {}
  // As Set(const TCIMValue&) on a new value.
  TCIMValue(const TCIMValue& other);
  // Takes everything; `other` is untyped and NULL afterwards.
  TCIMValue(TCIMValue&& other) noexcept : fType(TCIMType::TypeNone), fHasVariant(0) { Take(other); }
  ~TCIMValue() { Clear(); }
  TCIMValue& operator=(const TCIMValue& other);

  TCIMValue(bool value);
  TCIMValue(unsigned char value);
  TCIMValue(signed char value);
  TCIMValue(unsigned short value);
  TCIMValue(short value);
  TCIMValue(unsigned int value);
  TCIMValue(int value);
  TCIMValue(unsigned long value);
  TCIMValue(long value);
  TCIMValue(float value);
  TCIMValue(double value);
  TCIMValue(const std::string& value);
  TCIMValue(const char* value);  // must not be null
  TCIMValue(const TCIMDateTime& value);
  TCIMValue(const TCIMReference& value);
  TCIMValue(TCIMReference&& value);

  // A NULL value of `type`; with `maxArraySize` other than 0, of an array of it.
  TCIMValue(TCIMType type, unsigned int maxArraySize);

  // As Set(type, maxArraySize, elements).
  TCIMValue(TCIMType type, unsigned int maxArraySize, const std::vector<TCIMValue>& elements);

  // `text` read as a value of `type`. Numbers leave the base open (0x hexadecimal, leading 0
  // octal); a text that is no number gives 0, one that is no boolean false, without failing. Throws
  // zelStatusTypeMismatch for TypeNone, TypeChar and arrays, zelStatusInvalidDateTime for a bad
  // datetime, and zelStatusNotImplemented for references: paths are not read from text.
  TCIMValue(TCIMType type, const std::string& text, TContainer& container);

  // Each replaces type and data; referenced class and maximum array size stay, except where told.
  void Set(bool value);
  void Set(unsigned char value);
  void Set(signed char value);
  void Set(unsigned short value);
  void Set(short value);
  void Set(unsigned int value);
  void Set(int value);
  void Set(unsigned long value);
  void Set(long value);
  void Set(float value);
  void Set(double value);
  void Set(const std::string& value);
  void Set(const char* value);
  void Set(const TCIMDateTime& value);

  // The referenced class becomes the path's. Throws zelStatusInvalidReference, with nothing
  // changed, for a path without a class.
  void Set(const TCIMReference& value);
  void Set(TCIMReference&& value);

  // An array of `type` (the array flag may be left out) holding `elements`. `maxArraySize` is
  // stored and never enforced. Throws zelStatusInvalidProperty when an element has another type;
  // the array has been set all the same.
  void Set(TCIMType type, unsigned int maxArraySize, const std::vector<TCIMValue>& elements);
  void Set(TCIMType type, unsigned int maxArraySize, std::vector<TCIMValue>&& elements);

  // Makes this a copy of `other`. Nothing happens when the two are equal already: a NULL value then
  // keeps its own referenced class and maximum size. Throws zelStatusTypeMismatch for an `other` of
  // TypeNone or TypeChar; this value is NULL of that type afterwards.
  void Set(const TCIMValue& other);

  // Exchanges everything; nothing is checked or copied.
  void Swap(TCIMValue& other) noexcept;

  // NULL of `type`. `maxArraySize` is taken for array types only.
  void SetNullValue(TCIMType::ECIMType type, unsigned int maxArraySize);

  bool IsNull() const { return !fHasVariant; }
  TCIMType GetType() const { return static_cast<TCIMType::ECIMType>(fType); }
  bool IsArray() const { return GetType().IsArray(); }
  // A scalar reference; an array of references is none.
  bool IsReference() const { return GetType() == TCIMType::TypeReference; }
  unsigned int GetMaxArraySize() const { return fMaxArraySize; }

  // The class that a reference points or must point to; not owned, may be null, and dangles when
  // the class is removed or its container ends.
  TCIMClass* GetReferencedClass() const { return fReferencedClass; }

  // Throws zelStatusInvalidOpSequence unless the value is NULL.
  void SetReferencedClass(TCIMClass& cls);

  // Throw zelStatusValueIsNULL for NULL, then zelStatusTypeMismatch for any type but the matching.
  operator bool() const;
  operator unsigned char() const;
  operator signed char() const;
  operator unsigned short() const;
  operator short() const;
  operator unsigned int() const;
  operator int() const;
  operator unsigned long() const;
  operator long() const;
  operator float() const;
  operator double() const;
  operator std::string() const;
  operator TCIMDateTime() const;
  operator TCIMReference() const;
  // The value's own elements; may be changed through the reference.
  operator std::vector<TCIMValue>&() const;

  // The value in `base` 10, 16 or 8: 16 and 8 for unsigned integers only, 16 in capitals padded to
  // the width of the type, without prefix. Booleans are "true" and "false", arrays "{ 1, 2 }",
  // references their path. Throws zelStatusValueIsNULL, zelStatusNotSupported for other bases.
  std::string ToString(unsigned char base) const;

  // Two NULL values are equal when their types are (for references: their referenced classes, for
  // arrays: their maximum sizes, too). Values of different types are never equal.
  bool operator==(const TCIMValue& other) const;
  bool operator!=(const TCIMValue& other) const { return !(*this == other); }

  // NULL first, then by type code, then by value. Throws zelStatusNotImplemented for two arrays.
  bool operator<(const TCIMValue& other) const;
  bool operator>(const TCIMValue& other) const { return other < *this; }
  bool operator>=(const TCIMValue& other) const { return !(*this < other); }
  bool operator<=(const TCIMValue& other) const { return !(other < *this); }

 private:
  friend class TCIMPropertyImpl;
  friend class TCIMValueImpl;
  friend class TCIMXMLParser;
  friend struct TKeyBinding;

  // The data of a value that is not NULL.
  TCIMValueImpl& Variant() const;
  template <class TVariant, class... TArgs>
  void MakeVariant(TCIMType type, TArgs&&... args);
  // Takes everything; `other` is untyped and NULL afterwards.
  void Take(TCIMValue& other) noexcept {
    Clear();
    fType = other.fType;
    fHasVariant = other.fHasVariant;
    fMaxArraySize = other.fMaxArraySize;
    fReferencedClass = other.fReferencedClass;
    if (fHasVariant) {
      // Numbers, texts and datetimes do not know where they stand.
      if (GetType() < TCIMType::TypeReference) {
        std::memcpy(fVariant, other.fVariant, sizeof fVariant);
      } else {
        TakeVariant(other);
      }
    }
    other.fType = TCIMType::TypeNone;
    other.fHasVariant = false;
    other.fMaxArraySize = 0;
    other.fReferencedClass = nullptr;
  }
  void TakeVariant(TCIMValue& other) noexcept;
  void Clear() {
    if (fHasVariant && GetType() > TCIMType::TypeReal64) DestroyVariant();  // numbers own nothing
    fHasVariant = false;
  }
  void DestroyVariant();

  template <class T>
  void SetNumber(T value);
  // Reads `text` as the constructor does. False, with nothing changed, where that would throw or
  // needs the container.
  bool SetFromText(TCIMType type, std::string_view text);
  template <class T>
  T Convert() const;

  unsigned int fType : 31;       // a TCIMType
  unsigned int fHasVariant : 1;  // else the value is NULL
  unsigned int fMaxArraySize;
  TCIMClass* fReferencedClass;
  // The variant: in the value itself, so that ordinary ones cost no allocation.
  alignas(8) unsigned char fVariant[32];
};

// NOLINTEND(google-explicit-constructor)

// Writes type.ToString().
ZEL_API std::ostream& operator<<(std::ostream& out, const TCIMValue::TCIMType& type);
