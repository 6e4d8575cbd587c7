/// The files of a run, numbered in the order in which they are opened, so that messages,
/// identifiers and patches can refer to a file by its number. A file opened twice has two numbers.
#pragma once

#include <cstdint>
#include <memory>
#include <string_view>

#include "platform/platform.h"

namespace korv {

/// A null-terminated copy of `text`; null if there is no memory for it.
[[nodiscard]] std::unique_ptr<char[]> CopyOf(std::string_view text);

class CFileNameRegistry {
  public:
    CFileNameRegistry() = default;
    ~CFileNameRegistry();
    CFileNameRegistry(const CFileNameRegistry&) = delete;
    CFileNameRegistry& operator=(const CFileNameRegistry&) = delete;

    /// Stores a copy of `name`. Result: its number, from 1; 0 if there is no memory. If the table
    /// of names cannot grow, a memory failure is printed.
    std::int32_t AddName(std::string_view name);

    /// The text that a message shows for `number`: the name of the file, or a phrase for 0 (no
    /// file) or for a number that no file has. Valid as long as the registry exists.
    [[nodiscard]] const char* NameOf(std::int32_t number) const;

  private:
    platform::Buffer names;  // owned pointers; the name of file n has the index n - 1
    std::int32_t count = 0;
};

}  // namespace korv
