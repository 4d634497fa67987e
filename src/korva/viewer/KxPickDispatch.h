#pragma once

#include <functional>
#include <utility>
#include <vector>

class SbViewportRegion;
class SoMouseButtonEvent;
class SoNode;
class SoPickedPoint;

// What a pick callback gets: the mouse event and the point picked under it
// (null when the ray hit nothing). A callback that consumes the event sets
// handled; later callbacks are then not called.
struct KxPickEvent {
    const SoMouseButtonEvent* mouse = nullptr;
    const SoPickedPoint* picked = nullptr;
    bool handled = false;
};

// The viewer's pick callbacks. Modules that let the user pick a point in the
// 3-D viewer register a callback; the viewer hands each mouse button event
// to dispatch(), which picks the scene under the event's position and calls
// the callbacks, newest first, until one handles the event. A callback may
// remove itself (or others) while it runs. Picking runs on the CPU, so a
// synthetic event drives it without a window or GL context.
class KxPickDispatch {
public:
    using Callback = std::function<void(KxPickEvent& event)>;

    static KxPickDispatch& instance();

    // Answers an id for removeCallback.
    int addCallback(Callback callback);
    void removeCallback(int id);
    int getNumCallbacks() const { return static_cast<int>(callbacks_.size()); }

    // Picks scene (which holds its camera) at the event's position in region
    // and calls the callbacks; answers whether one handled the event.
    bool dispatch(SoNode* scene, const SbViewportRegion& region, const SoMouseButtonEvent& mouse);
    // Calls the callbacks with an event already picked.
    bool dispatch(KxPickEvent& event);

private:
    std::vector<std::pair<int, Callback>> callbacks_;
    int nextId_ = 0;
};

#define thePickDispatch (&KxPickDispatch::instance())
