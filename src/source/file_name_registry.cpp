#include "source/file_name_registry.h"

#include <cstdio>
#include <new>

#include "platform/platform.h"

namespace korv {

std::unique_ptr<char[]> CopyOf(std::string_view text) {
    std::unique_ptr<char[]> copy(new (std::nothrow) char[text.size() + 1]);
    if (copy != nullptr) {
        copy[text.copy(copy.get(), text.size())] = '\0';
    }
    return copy;
}

CFileNameRegistry::~CFileNameRegistry() {
    for (std::int32_t i = 0; i < count; ++i) {
        delete[] names[i];
    }
    platform::Free(names);
}

std::int32_t CFileNameRegistry::AddName(std::unique_ptr<char[]> name) {
    if (count == capacity) {
        const std::int32_t grownCapacity = capacity == 0 ? 10 : capacity * 2;
        void* const grown =
            platform::Reallocate(names, static_cast<std::size_t>(grownCapacity) * sizeof(char*));
        if (grown == nullptr) {
            std::printf("realloc error\n");
            return 0;
        }
        names = static_cast<char**>(grown);
        capacity = grownCapacity;
    }
    names[count] = name.release();
    return ++count;
}

const char* CFileNameRegistry::NameOf(std::int32_t number) const {
    if (number == 0) {
        return "Uhm, I DUNNO! ;p";
    }
    return number < 0 || number > count ? "--Error--" : names[number - 1];
}

}  // namespace korv
