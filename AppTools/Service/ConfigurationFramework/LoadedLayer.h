#pragma once

namespace Orvant {

/// While it lives, this thread loads objects from a layer.
class LoadedLayer {
public:
    /// @param isSystem whether the layer is the administrator's
    explicit LoadedLayer(bool isSystem);
    LoadedLayer(const LoadedLayer&) = delete;
    LoadedLayer& operator=(const LoadedLayer&) = delete;
    ~LoadedLayer();

    /// @return whether what is being loaded is the administrator's
    static bool isSystem();

private:
    bool m_former;
};

} // namespace Orvant
