#pragma once

#include <boost/shared_ptr.hpp>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "cim/TBlockPool.h"
#include "cim/TCIMElementImpl.h"
#include "cim/TPropertyHead.h"
#include "cim/TPropertyLayout.h"
#include "zelcore/TCIMProperty.h"
#include "zelcore/TCIMReference.h"
#include "zelcore/detail/Export.h"

class TCIMClass;
class TCIMInstance;
class TPathText;

class ZEL_API TCIMInstanceImpl : public TCIMElementImpl {
 public:
  // In the memory of the class's container.
  static boost::shared_ptr<TCIMInstanceImpl> Make(TCIMInstance* owner, TCIMClass* cls);
  // `memory` must outlive the instance.
  TCIMInstanceImpl(TCIMInstance* owner, TCIMClass* cls, TBlockPool& memory);
  ~TCIMInstanceImpl() override;
  TCIMInstanceImpl(const TCIMInstanceImpl&) = delete;
  TCIMInstanceImpl& operator=(const TCIMInstanceImpl&) = delete;

  void Validate() const override;
  TContainer* GetContainer() const override;
  TCIMInstance* GetOwner() const { return fOwner; }
  TCIMClass* GetClass() const { return fClass; }

  // Unless a class has it, validates `handle`, derived classes first, and hands it to the class.
  void AddToContainer(TCIMInstance& handle);
  // Whether a class has taken the instance.
  bool IsAdded() const { return fAdded; }
  void SetAdded(std::uint32_t pathHash) {
    fAdded = true;
    fPathHash = pathHash;
  }
  // Of the path that the instance is registered under.
  std::uint32_t PathHash() const { return fPathHash; }

  TCIMProperty* GetProperty(const std::string& name) const;
  TCIMProperty* FindProperty(const std::string& name) const;
  std::vector<TCIMProperty const*> EnumerateProperties() const;

  // The properties are in the order of its slots.
  const boost::shared_ptr<const TPropertyLayout>& Layout() const { return fLayout; }
  TCIMProperty& PropertyAt(std::size_t slot) const { return fProperties[slot]; }
  // Null unless the class declared a reference when the instance was made.
  TReferenceWatch* Watch() const {
    return fLayout->HasReferences() ? &fProperties.Head().watch : nullptr;
  }

  TCIMReference BuildPath() const;
  // Appends BuildPath().GetPath(), without making the path in between.
  void AppendPath(TPathText& text) const;

  // In AssociationTraversal.cpp.
  std::vector<TCIMInstance*> References(const std::string& assocClass,
                                        const std::string& role) const;
  std::vector<TCIMInstance*> Associators(const std::string& assocClass,
                                         const std::string& resultClass, const std::string& role,
                                         const std::string& resultRole) const;

  bool operator==(const TCIMInstanceImpl& other) const;
  bool operator<(const TCIMInstanceImpl& other) const {
    return std::less<>()(fClass, other.fClass);
  }

 private:
  // The properties in the order of the layout's slots, behind their head. They share the bodies of
  // the layout until they get values; their own are made in the same memory.
  class TPropertyBlock {
   public:
    TPropertyBlock(const TPropertyLayout& layout, TBlockPool& memory);
    ~TPropertyBlock();
    TPropertyBlock(const TPropertyBlock&) = delete;
    TPropertyBlock& operator=(const TPropertyBlock&) = delete;

    TCIMProperty& operator[](std::size_t slot) const { return fProperties[slot]; }
    TPropertyHead& Head() const { return *TPropertyHead::Before(fProperties); }

   private:
    std::size_t MemorySize() const;

    TCIMProperty* fProperties;
    std::uint32_t fSize;
  };

  bool HasPlainPath(const TPropertyLayout& current) const;

  TCIMInstance* fOwner;  // the handle that made this
  TCIMClass* fClass;
  boost::shared_ptr<const TPropertyLayout> fLayout;
  TPropertyBlock fProperties;
  bool fAdded;
  std::uint32_t fPathHash;
};
