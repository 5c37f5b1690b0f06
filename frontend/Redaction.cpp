#include "frontend/Redaction.h"

#include <fmt/format.h>
#include <sys/random.h>

#include <algorithm>
#include <cerrno>
#include <memory>
#include <set>
#include <string_view>
#include <system_error>

#include "frontend/Inventory.h"
#include "zelcore/zelcore.h"

namespace zel {
namespace {

using TType = TCIMValue::TCIMType;

constexpr std::string_view kOpening = "[redacted:";
constexpr std::size_t kDigits = 8;

// What is shorter, and what every machine has, stands in texts that have nothing to do with it.
constexpr std::size_t kShortestWord = 4;
constexpr std::string_view kEverydayWord = "root";
constexpr std::size_t kLongestWords = 4096;

TRedactionKey RandomKey() {
  TRedactionKey key;
  ssize_t count = 0;
  do {
    count = getrandom(key.data(), sizeof key, 0);
  } while (count < 0 && errno == EINTR);
  if (count != sizeof key) throw std::system_error(errno, std::generic_category(), "getrandom");
  return key;
}

std::uint64_t RotateLeft(std::uint64_t word, int bits) {
  return word << bits | word >> (64 - bits);
}

// SipHash-2-4 of Aumasson and Bernstein: with an unknown key nothing can be told from its results.
class TSipHash {
 public:
  explicit TSipHash(const TRedactionKey& key)
      : fState{key[0] ^ 0x736f6d6570736575, key[1] ^ 0x646f72616e646f6d,
               key[0] ^ 0x6c7967656e657261, key[1] ^ 0x7465646279746573} {}

  std::uint64_t Of(std::string_view text) {
    const std::uint64_t length = text.size();
    for (; text.size() >= 8; text.remove_prefix(8)) Take(Word(text.substr(0, 8)));
    Take(Word(text) | length << 56);
    fState[2] ^= 0xff;
    for (int i = 0; i < 4; ++i) Round();
    return fState[0] ^ fState[1] ^ fState[2] ^ fState[3];
  }

 private:
  // At most eight bytes, the first one lowest.
  static std::uint64_t Word(std::string_view bytes) {
    std::uint64_t word = 0;
    for (std::size_t i = bytes.size(); i-- > 0;) {
      word = word << 8 | static_cast<unsigned char>(bytes[i]);
    }
    return word;
  }

  void Take(std::uint64_t word) {
    fState[3] ^= word;
    Round();
    Round();
    fState[0] ^= word;
  }

  void Round() {
    auto& [a, b, c, d] = fState;
    a += b;
    c += d;
    b = RotateLeft(b, 13) ^ a;
    d = RotateLeft(d, 16) ^ c;
    a = RotateLeft(a, 32);
    c += b;
    a += d;
    b = RotateLeft(b, 17) ^ c;
    d = RotateLeft(d, 21) ^ a;
    c = RotateLeft(c, 32);
  }

  std::uint64_t fState[4];
};

bool IsRedactedText(std::string_view text) {
  return text.size() == kOpening.size() + kDigits + 1 &&
         text.substr(0, kOpening.size()) == kOpening && text.back() == ']';
}

bool IsWordByte(char c) {
  return ('0' <= c && c <= '9') || ('A' <= c && c <= 'Z') || ('a' <= c && c <= 'z') || c == '_' ||
         static_cast<unsigned char>(c) >= 0x80;
}

// Whether no word goes on from the byte before `at` to the byte there.
bool IsEdge(std::string_view text, std::size_t at) {
  return at == 0 || at == text.size() || !IsWordByte(text[at - 1]) || !IsWordByte(text[at]);
}

bool IsSensitive(const TCIMPropertyDecl* decl) {
  const TCIMQualifier* qualifier = decl ? decl->FindQualifier("SENSITIVE") : nullptr;
  if (!qualifier || qualifier->GetType() != TType::TypeBoolean) return false;
  const TCIMValue value = qualifier->GetValue();
  return !value.IsNull() && static_cast<bool>(value);
}

TType::ECIMType ElementType(const TCIMValue& value) {
  return static_cast<TType::ECIMType>(value.GetType() & ~TType::TypeArray);
}

// The bits of a 64-bit number that one of this type, signed or not, has no place for.
int UnusedBits(TType::ECIMType type) {
  switch (type) {
    case TType::TypeUint8:
    case TType::TypeSint8: return 57;
    case TType::TypeUint16:
    case TType::TypeSint16: return 49;
    case TType::TypeUint32:
    case TType::TypeSint32: return 33;
    default: return 1;
  }
}

bool IsKey(const TCIMClass& cls, const std::string& name) {
  const std::vector<std::string> keys = cls.EnumerateKeyNames();
  return std::find(keys.begin(), keys.end(), name) != keys.end();
}

// Learns first what is to be hidden, then hides it.
class TRedactor {
 public:
  explicit TRedactor(const TRedactionKey& key) : fKey(key) {}

  void Learn(const TContainer& container) {
    for (const TCIMInstance* instance : container.GetRootClass()->EnumerateInstances(true)) {
      for (const TCIMProperty* property : instance->EnumerateProperties()) {
        if (property->GetPropagated()) continue;  // the schema's, not the machine's
        LearnFrom(property->GetValue(), IsSensitive(property->GetDeclaration()));
      }
    }
  }

  void Apply(const TContainer& container) {
    for (TCIMClass* cls : container.GetRootClass()->EnumerateSubClasses(true)) {
      ReplaceInstances(*cls);
    }
  }

  const TReplacedInstances& GetReplaced() const { return fReplaced; }

  std::string Cleaned(const std::string& text) const {
    if (fSecrets.count(text) != 0) return RedactedText(text, fKey);
    std::string cleaned;
    std::size_t done = 0;
    for (std::size_t at = 0; at < text.size();) {
      const std::size_t length = SecretAt(text, at);
      if (length == 0) {
        ++at;
        continue;
      }
      cleaned.append(text, done, at - done) += RedactedText(text.substr(at, length), fKey);
      done = at += length;
    }
    return cleaned.append(text, done);
  }

 private:
  void LearnFrom(const TCIMValue& value, bool isSensitive) {
    if (value.IsNull()) return;
    if (value.IsArray()) {
      const std::vector<TCIMValue>& elements = value;
      for (const TCIMValue& element : elements) LearnFrom(element, isSensitive);
    } else if (value.IsReference()) {
      // Its target need not be there.
      const TCIMReference path = value;
      for (const auto& [name, key] : path.EnumerateKeyBindings()) {
        LearnFrom(key, IsSensitive(path.GetClass()->FindPropertyDecl(name)));
      }
    } else if (isSensitive && value.GetType() == TType::TypeString) {
      const std::string text = value;
      if (!text.empty() && !IsRedactedText(text)) fSecrets.insert(text);
    }
  }

  // The length of the longest secret that stands in `text` from `at` on and is to be hidden there;
  // 0 when there is none.
  std::size_t SecretAt(std::string_view text, std::size_t at) const {
    if (!IsEdge(text, at)) return 0;
    // Every secret that `rest` begins with is at most `rest`, and at most what `rest` has in common
    // with the greatest that is.
    std::string_view rest = text.substr(at, kLongestWords);
    while (rest.size() >= kShortestWord) {
      const auto above = fSecrets.upper_bound(rest);
      if (above == fSecrets.begin()) return 0;
      const std::string& secret = *std::prev(above);
      const auto differing = std::mismatch(rest.begin(), rest.end(), secret.begin(), secret.end());
      const auto common = static_cast<std::size_t>(differing.first - rest.begin());
      const bool isWhole = common == secret.size();
      if (isWhole && common >= kShortestWord && secret != kEverydayWord &&
          IsEdge(text, at + common)) {
        return common;
      }
      if (common == 0) return 0;
      rest = rest.substr(0, isWhole ? common - 1 : common);
    }
    return 0;
  }

  // A key cannot be changed in its place.
  void ReplaceInstances(TCIMClass& cls) {
    std::vector<std::unique_ptr<TCIMInstance>> copies;
    std::vector<TCIMInstance*> firsts;  // of each path: those with one path go together
    std::string last;
    for (TCIMInstance* instance : cls.EnumerateInstances(false)) {
      copies.push_back(RedactedCopy(*instance));
      fReplaced[instance] = copies.back().get();
      std::string path = instance->BuildPath().GetPath();
      if (path != last) firsts.push_back(instance);
      last = std::move(path);
    }
    for (TCIMInstance* instance : firsts) cls.RemoveInstance(*instance);
    for (std::unique_ptr<TCIMInstance>& copy : copies) {
      copy->AddToContainer();
      copy.release();
    }
  }

  std::unique_ptr<TCIMInstance> RedactedCopy(const TCIMInstance& instance) const {
    const TCIMClass& cls = *instance.GetClass();
    std::unique_ptr<TCIMInstance> copy(cls.GetContainer()->AllocateInstance(instance.GetClass()));
    for (const TCIMProperty* property : instance.EnumerateProperties()) {
      const std::string& name = property->GetName();
      const TCIMValue value = property->GetValue();
      if (!property->GetPropagated()) {
        copy->SetPropertyValue(name, Redacted(value, cls, *property->GetDeclaration()));
      } else if (value != copy->GetProperty(name)->GetValue()) {
        copy->SetPropertyValue(name, value);  // a new instance carries the time
      }
    }
    return copy;
  }

  TCIMValue Redacted(const TCIMValue& value, const TCIMClass& cls,
                     const TCIMPropertyDecl& decl) const {
    if (value.IsNull()) return value;
    const TType::ECIMType element = ElementType(value);
    const bool isHidden = element != TType::TypeString && IsSensitive(&decl);
    if (!isHidden) return WithCleanTexts(value);
    if (IsKey(cls, decl.GetName())) return HiddenKey(value, *cls.GetContainer());
    TCIMValue none = value;
    none.SetNullValue(value.GetType(), value.GetMaxArraySize());
    return none;
  }

  TCIMValue WithCleanTexts(const TCIMValue& value) const {
    if (value.IsNull()) return value;
    if (value.IsArray()) {
      std::vector<TCIMValue> elements = value;
      for (TCIMValue& element : elements) element = WithCleanTexts(element);
      return {value.GetType(), value.GetMaxArraySize(), elements};
    }
    if (value.GetType() == TType::TypeString) return Cleaned(value);
    if (!value.IsReference()) return value;
    const TCIMReference path = value;
    TCIMClass& cls = *path.GetClass();
    TCIMReference cleaned(cls.GetContainer());
    cleaned.SetClass(cls);
    for (const auto& [name, key] : path.EnumerateKeyBindings()) {
      cleaned.AddKeyValue(name, Redacted(key, cls, *cls.GetPropertyDecl(name)));
    }
    return cleaned;
  }

  // A key must have a value: a number that is made of its hash, or an interval.
  TCIMValue HiddenKey(const TCIMValue& value, TContainer& container) const {
    if (value.IsReference()) return WithCleanTexts(value);
    const std::uint64_t hash = TSipHash(fKey).Of(value.ToString(10));
    if (value.GetType() == TType::TypeDateTime) {
      return TCIMDateTime(static_cast<unsigned>(hash >> 48), 0, 0, 0, hash % 1000000);
    }
    return {value.GetType(), std::to_string(hash >> UnusedBits(value.GetType())), container};
  }

  TRedactionKey fKey;
  std::set<std::string, std::less<>> fSecrets;
  TReplacedInstances fReplaced;
};

}  // namespace

const TRedactionKey& ProcessKey() {
  static const TRedactionKey key = RandomKey();
  return key;
}

std::string RedactedText(const std::string& text, const TRedactionKey& key) {
  return fmt::format("{}{:08x}]", kOpening, TSipHash(key).Of(text) >> 32);
}

TReplacedInstances Redact(const std::vector<TInventory*>& inventories, const TRedactionKey& key) {
  TRedactor redactor(key);
  for (const TInventory* inventory : inventories) {
    if (!inventory->IsRedacted()) redactor.Learn(inventory->GetContainer());
  }
  for (TInventory* inventory : inventories) {
    if (inventory->IsRedacted()) continue;
    redactor.Apply(inventory->GetContainer());
    inventory->SetRedacted(redactor.Cleaned(inventory->GetTitle()));
  }
  return redactor.GetReplaced();
}

}  // namespace zel
