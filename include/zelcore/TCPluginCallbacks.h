#pragma once

#include <memory>
#include <string>
#include <vector>

#include "zelcore/IPluginCallbacks.h"
#include "zelcore/detail/Export.h"
#include "zelcore/zel.h"

// A plug-in written in C, behind the interfaces of the framework: calls go to the functions of its
// callbacks table. It is also the handle that the plug-in passes back to the C API.
//
// It is made by zelRegisterPlugin(), owned by nobody, and ends itself when PrepareForUnload()
// succeeds.
class ZEL_API TCPluginCallbacks : public IPluginCallbacks, public IPluginBasicQueryCallbacks {
 public:
  // Copies the table and registers with the plug-in manager, which must be there.
  explicit TCPluginCallbacks(zelPluginCallbacks* table);
  ~TCPluginCallbacks() override;

  // The getters ask the plug-in afresh each time.
  int GetType() override;
  std::string GetName() override;
  std::string GetVersion() override;
  std::string GetInterfaceVersion() override;
  void PrepareForUnload() override;
  void Init() override;
  void DeInit() override;
  void GetData(TContainer* container, std::vector<TCIMClass*>& classes) override;
  virtual int GetURLType();

  // The plug-in manager's record; null when the manager has dropped it.
  IPlugin* GetPluginHandle() const;
  // The path of the library, owned by this object; null before Init().
  const char* GetPluginPath() const;

  // Called by a record that ends.
  void ForgetPluginHandle();

 private:
  zelPluginInfo GetInfo();

  zelPluginCallbacks fTable;
  IPlugin* fPluginHandle;  // not owned
  std::unique_ptr<char[]> fPluginPath;
};
