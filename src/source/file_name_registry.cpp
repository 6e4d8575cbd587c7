#include "source/file_name_registry.h"

#include <new>

namespace korv {

std::unique_ptr<char[]> CopyOf(std::string_view text) {
    std::unique_ptr<char[]> copy(new (std::nothrow) char[text.size() + 1]);
    if (copy != nullptr) {
        copy[text.copy(copy.get(), text.size())] = '\0';
    }
    return copy;
}

CFileNameRegistry::~CFileNameRegistry() {
    for (std::int32_t number = 1; number <= count; ++number) {
        delete[] NameOf(number);
    }
}

std::int32_t CFileNameRegistry::AddName(std::string_view name) {
    std::unique_ptr<char[]> copy = CopyOf(name);
    if (copy == nullptr) {
        return 0;
    }
    char* const slot = names.Room(sizeof(char*));
    if (slot == nullptr) {
        platform::PrintMemoryFailure("realloc error");
        return 0;
    }
    new (slot) const char*(copy.release());
    names.Advance(sizeof(char*));
    return ++count;
}

const char* CFileNameRegistry::NameOf(std::int32_t number) const {
    if (number == 0) {
        return "Uhm, I DUNNO! ;p";
    }
    const auto* const all = reinterpret_cast<const char* const*>(names.Bytes().data());
    return number > 0 && number <= count ? all[number - 1] : "--Error--";
}

}  // namespace korv
