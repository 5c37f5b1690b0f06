#pragma once

#include <functional>
#include <iosfwd>
#include <string_view>
#include <vector>

#include "zelcore/detail/Export.h"

class TCIMClass;
class TCIMInstance;
class TContainer;

// Writes CIM-XML declaration documents (CIM 2.0, DTD 2.0) that
// TContainer::PopulateContainerFromFile() takes back to equal objects. The document leaves in
// pieces as it is made, so its size costs no memory.
//
// Every operation writes one whole document. Each throws zelStatusFileSystemError when it cannot
// be written; what has been written by then is cut short and must not be kept.
//
// Text     Comes back byte by byte, but for NULs, which are lost. XML cannot carry control
//          characters (those below blank, but for tab, line feed and carriage return): the
//          reference of a private use character, U+E000 and their number, stands in their place.
//          A byte that is not part of UTF-8 text is written as the reference of its number. The
//          reader gives the very byte for both; other programs see the character.
// Numbers  Reals have the fewest digits that give the same number.
// Left out Whatever is inherited or a default, previous values, the list of a diff container, and
//          what there is no element for: values without a type, and arrays of references.
//
// What the reader cannot take back is written as well as it goes: a NULL in an array as an empty
// value; a NULL own value over a default as a property without value; reals that are not finite as
// INF, -INF and NaN; datetimes that do not fit their form (intervals of more than 65535 days); a
// qualifier of another type than declared without its value; classes that need each other, and
// more than 100 MiB of text, as they are. A NULL or an array that is bound as a key is left out.
// For each of these, for replaced characters and for what there is no element for, a warning goes
// to the core logger.
//
// What was added to a class after its subclasses were made is read as inherited by them.
class ZEL_API TCIMXMLWriter {
 public:
  // The reader takes a document for compressed when its path holds ".gz".
  enum class ECompression { kNone, kGzip };

  // Neither is owned or closed. The stream is flushed at the end of a document.
  explicit TCIMXMLWriter(int descriptor, ECompression compression = ECompression::kNone);
  explicit TCIMXMLWriter(std::ostream& out, ECompression compression = ECompression::kNone);

  // Everything: qualifier declarations, classes, instances.
  void WriteContainer(const TContainer& container);

  // The instances of these classes of one container (not of their subclasses), with all that is
  // needed to read them into an empty container: every qualifier declaration, and the classes
  // together with their superclasses and the classes that they and their instances refer to.
  void WriteClasses(const std::vector<TCIMClass*>& classes);

  // Nothing but these instances: for a container that knows their classes.
  void WriteInstances(const std::vector<TCIMInstance*>& instances);

 private:
  std::function<void(std::string_view)> fTarget;
  ECompression fCompression;
};
