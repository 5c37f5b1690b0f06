#include "plugin/zeliIOHandle.h"

#include <utility>

zeliIOHandle::zeliIOHandle(TContainer* container, IPlugin* plugin)
    : fPlugin(plugin), fContainer(container), fCurrentInstance(nullptr) {}

zeliIOHandle::~zeliIOHandle() = default;

void zeliIOHandle::SetCurrentInstance(std::unique_ptr<TCIMInstance> instance) {
  fUncommitted = std::move(instance);
  fCurrentInstance = fUncommitted.get();
}

void zeliIOHandle::CommitCurrentInstance() {
  if (!fUncommitted) return;
  fUncommitted->AddToContainer();
  fUncommitted.release();
}
