// How much larger than its design a form is laid out, so that the desktop's font and style fit into it.
#pragma once

#include <QFont>
#include <QRect>

#include "ui/form.h"

namespace ui {

class LayoutScale {
  public:
    /// As small as the design, and larger where a caption, a line of text or the tabs need it.
    LayoutScale(const Form& form, const QFont& font);

    /// A control's place in its parent, in Qt's pixels. Edges are scaled, not sizes, so controls that
    /// touch at one scale touch at every scale.
    QRect PlaceIn(const Control& control, const Control* parent) const;
    QSize ClientSize(const FormDesign& design) const;
    double Across() const { return across_; }
    double Down() const { return down_; }

  private:
    int X(int twips) const;
    int Y(int twips) const;
    void Need(const Control& control, QSize size);

    double across_ = 1;
    double down_ = 1;
};

} // namespace ui
