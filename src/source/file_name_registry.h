/// The files of a run, numbered in the order of opening, so that messages, identifiers and patches
/// can name a file by a number. A file opened twice has two numbers.
#pragma once

#include <cstdint>
#include <memory>
#include <string_view>

#include "platform/platform.h"

namespace korv {

/// A copy of `text`, terminated; null when there is no memory for it.
[[nodiscard]] std::unique_ptr<char[]> CopyOf(std::string_view text);

class CFileNameRegistry {
  public:
    CFileNameRegistry() = default;
    ~CFileNameRegistry();
    CFileNameRegistry(const CFileNameRegistry&) = delete;
    CFileNameRegistry& operator=(const CFileNameRegistry&) = delete;

    /// Takes over `name`. Result: its number, from 1. When the table cannot grow, that is printed
    /// as a memory failure, the name is released and the number is 0.
    std::int32_t AddName(std::unique_ptr<char[]> name);

    /// The text for a message, valid as long as the registry: the name, null for a slot that is
    /// still free, or a phrase for 0 (no file) and for a number without a slot.
    [[nodiscard]] const char* NameOf(std::int32_t number) const;

  private:
    std::int32_t capacity = 10;  // slots
    platform::Buffer names;      // pointers, owned; that of number n is in slot n - 1
    std::int32_t count = 0;
};

}  // namespace korv
