#pragma once

// The programs of the built-in commands.

namespace sg {
class Command;
}

namespace sg::commands {

void line(Command& c);
void polyline(Command& c);
void circle(Command& c);
void arc(Command& c);
void point(Command& c);
void text(Command& c);
void textLines(Command& c);  // as text(), until an empty line
void paragraphText(Command& c);

void insert(Command& c);
void block(Command& c);
void layer(Command& c);
void textStyle(Command& c);
void linetype(Command& c);

void erase(Command& c);
void move(Command& c);
void copy(Command& c);
void rotate(Command& c);
void scale(Command& c);
void mirror(Command& c);
void stretch(Command& c);
void explode(Command& c);
void properties(Command& c);
void purge(Command& c);

void undoOptions(Command& c);
void undoOne(Command& c);
void redo(Command& c);
void redoSeveral(Command& c);

void zoom(Command& c);
void regenerate(Command& c);
void redraw(Command& c);
void userCoordinates(Command& c);

void openDrawing(Command& c);
void save(Command& c);
void saveAs(Command& c);
void quickSave(Command& c);
void setVariable(Command& c);

}  // namespace sg::commands
