#include <vardel/server/object.h>

#include <mutex>
#include <unordered_map>

namespace vardel::server {
namespace {

// One map for all threads: a core object belongs to one thread, and so does its entry.
std::mutex mutex;
std::unordered_map<const void*, IUnknown*>& Objects() {
  static std::unordered_map<const void*, IUnknown*> objects;
  return objects;
}

}  // namespace

void ObjectMap::Add(const void* core, IUnknown* object) {
  const std::lock_guard lock(mutex);
  Objects().emplace(core, object);
}

void ObjectMap::Remove(const void* core) {
  const std::lock_guard lock(mutex);
  Objects().erase(core);
}

ComPtr<IUnknown> ObjectMap::Find(const void* core) {
  const std::lock_guard lock(mutex);
  const auto found = Objects().find(core);
  return ComPtr<IUnknown>::Share(found == Objects().end() ? nullptr : found->second);
}

}  // namespace vardel::server
