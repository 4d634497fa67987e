#pragma once

#include <QObject>

// Announces that the parameters of a graph view changed (what is shown, how
// it is scaled or coloured), so that tools following the view can refresh.
class QkSpatialGraphNotifier : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

    void emitParamsChanged() { emit signalParamsChanged(); }

signals:
    void signalParamsChanged();
};
