// Where the things of a survey stand, by their ids: looked up once or twice for each stored answer.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <unordered_map>
#include <vector>

namespace pollarix {

// A table for the ids that surveys have, which count from 1, and a slower one for any others.
template <typename Place> class IdPlaces {
  public:
    void Insert(std::int64_t id, Place place) {
        if (id < 0 || id >= Most) {
            others_[id] = place;
            return;
        }
        if (id >= static_cast<std::int64_t>(places_.size()))
            places_.resize(static_cast<std::size_t>(id) + 1);
        places_[static_cast<std::size_t>(id)] = place;
    }
    // A new Place for an id that was not inserted.
    Place Of(std::int64_t id) const {
        if (id >= 0 && id < static_cast<std::int64_t>(places_.size()))
            return places_[static_cast<std::size_t>(id)];
        if (others_.empty())
            return Place();
        const auto found = others_.find(id);
        return found == others_.end() ? Place() : found->second;
    }

    // And for a Null.
    Place Of(std::optional<std::int64_t> id) const { return id ? Of(*id) : Place(); }

  private:
    static constexpr std::int64_t Most = 1 << 18;
    std::vector<Place> places_;
    std::unordered_map<std::int64_t, Place> others_;
};

} // namespace pollarix
