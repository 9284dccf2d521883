// LoadedLibrary: a shared library that only some files need, loaded when the first of them comes.
//
// Loaded before main(), LibRaw and libtiff with all that they bring would take longer than most commands do.
#pragma once

namespace zerklsc::tool {

// Stays loaded as long as the program runs.
class LoadedLibrary {
  public:
    // `name` is the library's SONAME. A system failure where it is not there.
    explicit LoadedLibrary(const char* name);

    // Becomes a pointer to whatever kind of function it initialises, as the library's header declares it.
    struct Function {
        void* address;

        template <class Type>
        operator Type*() const { // NOLINT(google-explicit-constructor): the conversion is what it is for
            return reinterpret_cast<Type*>(address);
        }
    };
    Function function(const char* name) const;

  private:
    const char* name_;
    void* handle_;
};

} // namespace zerklsc::tool
