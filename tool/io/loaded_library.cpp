// LoadedLibrary
#include "io/loaded_library.h"

#include <dlfcn.h>

#include "failure.h"

namespace zerklsc::tool {

LoadedLibrary::LoadedLibrary(const char* name) : name_(name), handle_(dlopen(name, RTLD_NOW | RTLD_LOCAL)) {
    if (handle_ == nullptr)
        system_failure("files of this kind are read with a library that cannot be loaded: {}", dlerror());
}

LoadedLibrary::Function LoadedLibrary::function(const char* name) const {
    void* const address = dlsym(handle_, name);
    if (address == nullptr)
        system_failure("{}: has no function {}: expected the version that the tool was built with", name_,
                       name);
    return {address};
}

} // namespace zerklsc::tool
