// The flowsheet as the engine sees it: a surface that the drawing routines
// draw on, the state of the pointer, and the events a window sends. A server
// or a test implements Surface; nothing here knows of a window toolkit.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "drawing/items.hpp"
#include "model/context.hpp"
#include "model/records.hpp"

namespace velm {

enum class PenStyle { Solid, Dot };

// Drawing operations in sheet twips (x right, y down). Colours are 0x00BBGGRR.
class Surface {
public:
    virtual ~Surface() = default;
    // Everything drawn between begin_item and end_item belongs to one record.
    virtual void begin_item(std::string_view kind, int index) = 0;
    virtual void end_item() = 0;
    virtual void point(float x, float y, int32_t colour) = 0;
    virtual void line(float x1, float y1, float x2, float y2, int32_t colour, PenStyle style) = 0;
    virtual void box(float x1, float y1, float x2, float y2, int32_t colour, PenStyle style) = 0;
    virtual void filled_box(float x1, float y1, float x2, float y2, int32_t colour, int32_t fill) = 0;
    virtual void circle(float x, float y, float r, int32_t colour) = 0;
    // Angles in radians, counter-clockwise from the x axis as seen on the sheet.
    virtual void arc(float x, float y, float r, float start, float end, int32_t colour) = 0;
    // size is relative to the sheet's normal text height (1 normal).
    virtual void text(float x, float y, std::string_view s, float size, int32_t colour) = 0;
};

// Modifier keys and buttons of a pointer event.
struct PointerEvent {
    float x = 0.0f, y = 0.0f;  // sheet twips
    int button = 1;            // 1 left, 2 right
    bool shift = false, ctrl = false;
};

// A port of an item by number (the order of item_ports), or none.
struct PortId {
    ItemRef item;
    int port = -1;
    bool valid() const { return port >= 0; }
};

// What the pointer is doing and what lies under it; one per open sheet.
struct DrawState {
    int HoverState = 0;
    std::string HoverKind;
    int HoverIndex = 0, HoverPoint = 0;
    PortId HoverPort;
    // 0 idle, 1 drawing a pipe, 4 dragging a line's point, 5 dragging the
    // selection, 7 and 8 carrying a pipe's inlet or outlet end, 49 pipe tool
    // armed, 50..63 equipment tools.
    int DrawAction = 0;
    std::string ActionKind;
    int ActionIndex = 0, ActionPoint = 0;
    PortId ActionStartPort;
    float DragX = 0.0f, DragY = 0.0f;
    std::string LabelMode;  // "Input", "Result" or empty
    std::string status;     // the status text of the pointer (lblHelp)
    bool RunActive = false;
    bool ProjectDirty = false;
    bool changed = false;   // the last event changed the project (set by the handlers, cleared by the caller)
    ItemRef edit_request;   // an item whose dialog the last event opened (index 0: none)
};

// Writes the labels of an item at its anchor; empty when labels are not drawn.
using LabelPainter = std::function<void(Surface&, ItemRef, float x, float y)>;

// Draws the sheet (border, title block, grid) and then every item in the
// drawing order with its icon, selection frame and, with a painter and a
// label mode, its labels.
void Redraw(Surface& surface, const Project& project, const DrawState& state, const LabelPainter& labels = {});

// Sets the hover fields for the point (x, y) in the hit-test order, and the
// status text of the pointer.
void HitTest(Project& project, DrawState& state, float x, float y);

// Pointer and key events of the sheet. Keys are the window system's virtual key
// codes (27 Esc, 13 Enter, 46 Del, 'C' and 'V' with ctrl).
void Form_MouseDown(Project& project, DrawState& state, Interaction& io, const PointerEvent& e);
void Form_MouseMove(Project& project, DrawState& state, Interaction& io, const PointerEvent& e);
void Form_MouseUp(Project& project, DrawState& state, Interaction& io, const PointerEvent& e);
void Form_DblClick(Project& project, DrawState& state, Interaction& io, const PointerEvent& e);
void Form_KeyDown(Project& project, DrawState& state, Interaction& io, int key, bool shift, bool ctrl);

// The status text of a hover state under a draw action.
std::string hover_status(int hover_state, int draw_action);

}  // namespace velm
