#include "korva/viewer/KxPickDispatch.h"

#include <algorithm>

#include <Inventor/SbViewportRegion.h>
#include <Inventor/SoPickedPoint.h>
#include <Inventor/actions/SoRayPickAction.h>
#include <Inventor/events/SoMouseButtonEvent.h>
#include <Inventor/nodes/SoNode.h>

KxPickDispatch& KxPickDispatch::instance() {
    static KxPickDispatch dispatch;
    return dispatch;
}

int KxPickDispatch::addCallback(Callback callback) {
    callbacks_.emplace_back(nextId_, std::move(callback));
    return nextId_++;
}

void KxPickDispatch::removeCallback(int id) {
    callbacks_.erase(std::remove_if(callbacks_.begin(), callbacks_.end(),
                                    [id](const std::pair<int, Callback>& c) { return c.first == id; }),
                     callbacks_.end());
}

bool KxPickDispatch::dispatch(SoNode* scene, const SbViewportRegion& region,
                              const SoMouseButtonEvent& mouse) {
    SoRayPickAction pick(region);
    pick.setPoint(mouse.getPosition());
    pick.setRadius(3.0f);
    if (scene) {
        pick.apply(scene);
    }
    KxPickEvent event;
    event.mouse = &mouse;
    event.picked = pick.getPickedPoint();
    return dispatch(event);
}

bool KxPickDispatch::dispatch(KxPickEvent& event) {
    std::vector<int> ids;
    for (auto it = callbacks_.rbegin(); it != callbacks_.rend(); ++it) {
        ids.push_back(it->first);
    }
    for (int id : ids) {
        auto found = std::find_if(callbacks_.begin(), callbacks_.end(),
                                  [id](const std::pair<int, Callback>& c) { return c.first == id; });
        if (event.handled) {
            break;
        }
        if (found != callbacks_.end()) {
            Callback callback = found->second;  // the callback may remove itself
            callback(event);
        }
    }
    return event.handled;
}
