#pragma once

#include "host/render/entity_draw.h"

namespace sg::render {

// The properties of what is being drawn. They are resolved when something is drawn with them.
class EntityDraw::Traits final : public AcGiSubEntityTraits {
  public:
    // Everything that an entity starts with, and what it stands in.
    struct State {
        Properties properties;
        const PlainProperties* outer = nullptr;
        AcGiFillType fill = kAcGiFillNever;
        double thickness = 0;
        PatternRun run = PatternRun::through;
    };

    explicit Traits(Looks& looks) : looks_(looks) {}

    void begin(const State& state) {
        state_ = state;
        plain_.reset();
        look_.reset();
    }
    const State& state() const { return state_; }

    const PlainProperties& plain() {
        if (!plain_) plain_ = looks_.plain(state_.properties, state_.outer);
        return *plain_;
    }
    const Look& look() {
        if (!look_) look_ = looks_.look(plain(), state_.properties.linetypeScale);
        return *look_;
    }
    bool isShown() { return !plain().isFrozen && !plain().isOff && plain().alpha != 0; }

    void setColor(uint16_t index) override {
        AcCmColor color;
        if (color.setColorIndex(index)) setTrueColor(color);
    }
    void setTrueColor(const AcCmColor& color) override { change(state_.properties.color, color); }
    void setLayer(AcDbObjectId layer) override { change(state_.properties.layer, layer); }
    void setLineType(AcDbObjectId linetype) override {
        change(state_.properties.linetype, linetype);
    }
    void setLineTypeScale(double scale) override { change(state_.properties.linetypeScale, scale); }
    void setLineWeight(int weight) override { change(state_.properties.lineWeight, weight); }
    void setFillType(AcGiFillType type) override { state_.fill = type; }
    void setSelectionMarker(int64_t) override {}
    void setThickness(double thickness) override { state_.thickness = thickness; }

    uint16_t color() const override { return state_.properties.color.colorIndex(); }
    AcCmColor trueColor() const override { return state_.properties.color; }
    AcDbObjectId layerId() const override { return state_.properties.layer; }
    AcDbObjectId lineTypeId() const override { return state_.properties.linetype; }
    double lineTypeScale() const override { return state_.properties.linetypeScale; }
    int lineWeight() const override { return state_.properties.lineWeight; }
    AcGiFillType fillType() const override { return state_.fill; }
    double thickness() const override { return state_.thickness; }

  private:
    template <class Value>
    void change(Value& member, const Value& value) {
        if (member == value) return;
        member = value;
        plain_.reset();
        look_.reset();
    }

    Looks& looks_;
    State state_;
    std::optional<PlainProperties> plain_;
    std::optional<Look> look_;
};

}  // namespace sg::render
