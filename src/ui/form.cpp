// Makes a form's controls from its design, and keeps the state of the form itself.
#include "ui/form.h"

#include <array>

#include "ui/operator.h"

namespace ui {
namespace {

constexpr int kFirstId = 1000; // the identifier of the first control

using Maker = std::unique_ptr<Control> (*)(Form&, const ControlDesign&, int, Control*);

template <class T>
std::unique_ptr<Control> Make(Form& form, const ControlDesign& design, int id, Control* parent) {
    return std::make_unique<T>(form, design, id, parent);
}

struct KindMaker {
    Kind kind;
    Maker make;
};

constexpr std::array kMakers = {
    KindMaker{Kind::Frame, Make<Frame>},
    KindMaker{Kind::PictureBox, Make<PictureBox>},
    KindMaker{Kind::Label, Make<Label>},
    KindMaker{Kind::TextBox, Make<TextBox>},
    KindMaker{Kind::CommandButton, Make<CommandButton>},
    KindMaker{Kind::CheckBox, Make<CheckBox>},
    KindMaker{Kind::OptionButton, Make<OptionButton>},
    KindMaker{Kind::ComboBox, Make<ComboBox>},
    KindMaker{Kind::ListBox, Make<ListBox>},
    KindMaker{Kind::ListView, Make<ListView>},
    KindMaker{Kind::ProgressBar, Make<ProgressBar>},
    KindMaker{Kind::TabControl, Make<TabControl>},
};

std::unique_ptr<Control> MakeControl(Form& form, const ControlDesign& design, int id, Control* parent) {
    for (const KindMaker& maker : kMakers) {
        if (maker.kind == design.kind) {
            return maker.make(form, design, id, parent);
        }
    }
    throw Refusal("a form holds no control of the kind of " + std::string(design.name.name));
}

} // namespace

Form::Form(const FormDesign& design)
    : design_(design),
      root_design_{Kind::Form, {design.name}, design.caption, "", {}, {}},
      root_(std::make_unique<Control>(*this, root_design_, 0, nullptr)),
      caption_(design.caption) {
    controls_.reserve(design.controls.size());
    for (const ControlDesign& row : design.controls) {
        Control* parent = nullptr;
        if (row.parent.name[0] != '\0') {
            parent = Find(row.parent.name, row.parent.index);
            if (parent == nullptr) {
                RefuseName(row.parent.name, row.parent.index);
            }
        }
        const int id = kFirstId + static_cast<int>(controls_.size());
        controls_.push_back(MakeControl(*this, row, id, parent));
    }
}

Form::~Form() = default;

Control* Form::Find(const std::string& name, int index) const {
    for (const auto& control : controls_) {
        if (control->Name() == name && control->Design().name.index == index) {
            return control.get();
        }
    }
    return nullptr;
}

void Form::RefuseName(const char* name, int index) {
    throw Refusal("the form has no control " + std::string(name) +
                  (index == kNoIndex ? "" : "(" + std::to_string(index) + ")") + " of this kind");
}

void Form::Caption(const std::string& value) {
    if (caption_ != value) {
        caption_ = value;
        Notify(Root(), Property::Caption);
    }
}

void Form::SetFocus(Control& control) {
    if (!CanBeUsed(control)) {
        return;
    }
    focused_ = &control;
    Notify(Root(), Property::Focus);
}

void Form::LockPainting() {
    ++painting_locks_;
    Notify(Root(), Property::Painting);
}

void Form::UnlockPainting() {
    painting_locks_ = 0;
    Notify(Root(), Property::Painting);
}

void Form::Unload() {
    if (unloaded_) {
        return;
    }
    unloaded_ = true;
    if (on_unload) {
        on_unload();
    }
    Notify(Root(), Property::Unloaded);
}

void Form::Notify(const Control& control, Property property) const {
    if (mirror_ != nullptr) {
        mirror_->Changed(control, property);
    }
}

} // namespace ui
