// Points imported functions of a loaded module at functions of the test, and back again.
#pragma once

#include <windows.h>

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

namespace support {

// One imported function, redirected while the object lives. A module that does not import the
// function is left alone; Found() tells.
class ImportRedirection {
  public:
    ImportRedirection(HMODULE module, const char* function, void* replacement);
    template <typename Function>
    ImportRedirection(HMODULE module, const char* function, Function* replacement)
        : ImportRedirection(module, function, reinterpret_cast<void*>(replacement)) {}
    ~ImportRedirection();
    ImportRedirection(const ImportRedirection&) = delete;
    ImportRedirection& operator=(const ImportRedirection&) = delete;

    bool Found() const { return slot_ != nullptr; }

  private:
    static void Write(void** slot, void* value);

    void** slot_ = nullptr;
    void* original_ = nullptr;
};

struct Import {
    std::string library, function;
    void** slot;
};

// Every function that a loaded module imports by name.
std::vector<Import> ImportsOf(HMODULE module);

// The library under test: the one that this program is linked with, unless another was named.
HMODULE LibraryModule();
void UseLibrary(HMODULE module);

// Redirects one function of the library for the life of the returned object; a missing import ends
// the test run, because the test would prove nothing.
template <typename Function>
std::unique_ptr<ImportRedirection> RedirectLibrary(const char* function, Function* replacement) {
    auto redirection = std::make_unique<ImportRedirection>(LibraryModule(), function, replacement);
    if (!redirection->Found()) {
        fprintf(stderr, "the library does not import %s\n", function);
        ExitProcess(3);
    }
    return redirection;
}

}  // namespace support
