// A small capsule that names a state.
#pragma once

#include <QString>
#include <cstdint>

#include "views/components/ov_widget.h"

namespace ovrin {

class OVStatusPill final : public OVWidget {
    Q_OBJECT

public:
    enum class Kind : std::uint8_t { neutral, active, success, warning, error };

    OVStatusPill(ViewEnvironment& environment, const QString& text, Kind kind, QWidget* parent = nullptr);

    void set(const QString& text, Kind kind);
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString text_;
    Kind kind_;
};

}  // namespace ovrin
