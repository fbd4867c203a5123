#pragma once

namespace Orvant {

/// @return whether an object, or one that it is in, is locked
template <typename Object>
bool isInLockedObject(const Object& object) {
    const auto* const parent = object.getParent();
    return !object.isEditable() || (parent != nullptr && isInLockedObject(*parent));
}

} // namespace Orvant
