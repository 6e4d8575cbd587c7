#include "source/file_name_registry.h"

#include <cstdio>
#include <new>
#include <utility>

#include "platform/platform.h"

namespace korv {

CFileNameRegistry::~CFileNameRegistry() {
    delete[] names;
}

std::int32_t CFileNameRegistry::AddName(std::unique_ptr<char[]> name) {
    if (count == capacity) {
        constexpr std::int32_t growth = 10;
        auto* const grown =
            new (std::nothrow) std::unique_ptr<char[]>[static_cast<std::size_t>(capacity + growth)];
        if (grown == nullptr) {
            std::printf("realloc error\n");
            return 0;
        }
        std::move(names, names + count, grown);
        delete[] names;
        names = grown;
        capacity += growth;
    }
    names[count] = std::move(name);
    return ++count;
}

const char* CFileNameRegistry::NameOf(std::int32_t number) const {
    if (number == 0) {
        return "Uhm, I DUNNO! ;p";
    }
    return number < 0 || number > count ? "--Error--" : names[number - 1].get();
}

}  // namespace korv
