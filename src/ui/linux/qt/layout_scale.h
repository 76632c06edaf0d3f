// Works out how much larger than its design a form must be laid out so that the desktop's font and style fit.
#pragma once

#include <QFont>
#include <QRect>

#include "ui/form.h"

namespace ui {

class LayoutScale {
  public:
    /// The scale is 1 unless a caption, a line of text or the tabs need more.
    LayoutScale(const Form& form, const QFont& font);

    /// A control's position and size in Qt's pixels, relative to `parent`; null stands for the form. Edges
    /// are scaled, not sizes, so controls that touch at one scale touch at every scale.
    QRect PlaceIn(const Control& control, const Control* parent) const;
    /// The size of the window without its frame, in Qt's pixels.
    QSize ClientSize(const FormDesign& design) const;
    /// The horizontal and the vertical scale, at least 1.
    double Across() const { return across_; }
    double Down() const { return down_; }

  private:
    int X(int twips) const;
    int Y(int twips) const;
    /// Enlarges the scale so that the control gets at least this size.
    void Need(const Control& control, QSize size);

    double across_ = 1;
    double down_ = 1;
};

} // namespace ui
