// The module of drawings: the SVG model with Qt's SVG library, which loads Qt Gui, X11 and OpenGL.

#include "drawings/Module.h"

#include "Stored/V21/Internal/Repaint.h"

extern "C" __attribute__((visibility("default"))) Drawings::Repaint adaptorsRepaint;

void adaptorsRepaint(QString& text, quint32 color) {
    text = Stored::V21::Internal::repainted(text, color);
}
