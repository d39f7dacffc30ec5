// The simulated controllers' firmware images: what is in one, what it fits, and what is read of it.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "simulators/controllers/Image.h"

namespace kelvane::fuzz {

// Every part has a version, and there is a product; each is one.
void requireSound(const simulator::Image& image);

// Whether an image of these products fits the product with this identifier.
void requireFitting(const std::vector<std::string>& products,
                    const std::function<bool(std::uint16_t)>& fits);

// What was read of the bytes that this image was written to.
void requireReadAgain(const simulator::Image& image, const std::optional<simulator::Image>& read,
                      const std::string& bytes);

// What was read of a file of which one bit has changed.
void requireDamaged(const std::optional<simulator::Image>& read);

}  // namespace kelvane::fuzz
