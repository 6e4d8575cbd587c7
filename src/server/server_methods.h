/// The table of the methods; only the files of `Server` include it.
#pragma once

#include <cstdint>
#include <string_view>

#include "server/server.h"

namespace korv {

struct Server::Method {
    /// What a method cannot do without, as bits.
    enum Needs : std::uint8_t {
        nothing = 0,
        uri = 1,
        text = 2,
        changes = 4,
        position = 8,
        range = 16,
        newName = 32,
        query = 64,
    };

    std::string_view name;
    Result (Server::*take)(const Parameters& parameters);
    unsigned needs = nothing;
    bool isFeature = false;  ///< it answers from the snapshots, which have to be up to date

    /// The name of a parameter that is needed and missing; empty: none is.
    [[nodiscard]] std::string_view Missing(const Parameters& parameters) const;
};

/// The file that a request is about, in the snapshot of its program.
struct Server::Target {
    const Snapshot* snapshot = nullptr;  ///< null: the file is not part of a program
    std::int32_t file = noIndex;
    std::string path;
    Place place;  ///< of the position, if the request has one

    explicit operator bool() const { return snapshot != nullptr; }
};

}  // namespace korv
