#pragma once

#include <memory>

#include "zelcore/TCIMInstance.h"
#include "zelcore/detail/Export.h"

class IPlugin;
class TContainer;

// What a plug-in holds while it answers one GetData(): where its instances go, and the instance
// that it is building. Lives on the stack of that call.
class ZEL_API zeliIOHandle {
 public:
  zeliIOHandle(TContainer* container, IPlugin* plugin);
  // An instance that was not committed ends here.
  ~zeliIOHandle();
  zeliIOHandle(const zeliIOHandle&) = delete;
  zeliIOHandle& operator=(const zeliIOHandle&) = delete;

  IPlugin* GetPlugin() const { return fPlugin; }
  TContainer* GetContainer() const { return fContainer; }

  // Null at first. It stays current after it was committed, until the next one replaces it.
  TCIMInstance* GetCurrentInstance() const { return fCurrentInstance; }
  void SetCurrentInstance(std::unique_ptr<TCIMInstance> instance);

  // Hands the current instance to its class, unless there is none or that was done before. On a
  // throw it stays current and may be committed again.
  void CommitCurrentInstance();

 private:
  IPlugin* fPlugin;                            // not owned
  TContainer* fContainer;                      // not owned
  TCIMInstance* fCurrentInstance;              // owned by its class once committed, until then by
  std::unique_ptr<TCIMInstance> fUncommitted;  // this
};
