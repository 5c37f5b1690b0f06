#pragma once

#include <boost/shared_ptr.hpp>
#include <cstddef>
#include <cstdint>
#include <set>
#include <unordered_map>
#include <vector>

#include "cim/TPropertyLayout.h"
#include "cim/TReferenceWatch.h"

class TCIMInstance;
class TCIMInstanceImpl;
class TCIMPropertyDeclImpl;
class TInstanceRegistry;

// Finds the instances of one association that may refer to a given instance, by the text of the
// paths that their references hold. Built when it is first asked, and brought up to date whenever
// it is asked again: adding instances costs nothing.
//
// Of a text only its hash is kept. It stands for whatever is found under the text later, so a
// reference may be there before its target; but what comes out is to be confirmed.
class TReferenceIndex {
 public:
  // All instances of `associations` that refer to `target`, and perhaps some that do not, in the
  // order of AppendTo(). The index is for one registry.
  std::vector<TCIMInstance*> Find(const TInstanceRegistry& associations,
                                  const TCIMInstanceImpl& target);

 private:
  static constexpr std::uint64_t kNotLooked = static_cast<std::uint64_t>(-1);

  using TEntries = std::vector<std::uint32_t>;  // numbers in the registry

  void Update(const TInstanceRegistry& associations);
  std::size_t Enter(const TInstanceRegistry& associations, std::uint32_t entry);
  void NoteDeclarations(const TCIMInstanceImpl& instance);
  bool IsAReferenceDeclared();
  void AppendEntries(const TInstanceRegistry& associations, std::uint32_t key, TEntries& entries);

  std::unordered_map<std::uint32_t, TEntries> fReferrers;  // by the key of what is referred to
  TEntries fUnwatched;         // do not tell when they change: may always refer
  std::uint32_t fEntered = 0;  // so many entries of the registry are in
  std::uint32_t fCompactions = 0;
  std::size_t fSize = 0;   // of all lists of referrers
  std::size_t fStale = 0;  // of these, at most so many that are no longer true
  boost::shared_ptr<TReferenceWatch::TChanges> fChanged;

  // The declarations whose defaults may show: as long as one is a reference, all instances may
  // refer to the same.
  std::set<boost::shared_ptr<TCIMPropertyDeclImpl>> fDeclarations;
  boost::shared_ptr<const TPropertyLayout> fLayout;  // the last one noted
  std::uint64_t fSchemaChanges = kNotLooked;         // when fDeclarations were looked at
  bool fIsAReferenceDeclared = false;
};
