#pragma once

// The LISP functions that ask and change entities and layers of the current drawing, and those that
// ask the user and the system. Each is an implementation as the call guard runs it;
// docs/functions/drawing.md, selection.md and shell.md tell what they do.
namespace sg {

// Curves.
int curveGetLength();
int curveGetPointAtDist();
int curveGetClosestPointTo();
int curveGetDistAtPoint();
int polylineSetCurveType();

// Texts of several lines.
int mtextActualWidth();
int mtextActualHeight();
int mtextAscent();
int mtextDescent();
int mtextDirection();
int mtextSetDirection();
int mtextSetMask();
int mtextSetNormal();
int mtextInsert();
int mtextLastLineWidth();

// Any entity, and faces and blocks.
int entitySetColor();
int entityGetGeomExtents();
int faceMakeEdgeInvisibleAt();
int setAnnotative();
int setAnnotativeBlock();

// Layers, colours and viewports.
int setTrueColor();
int setPlotStyle();
int freezeInViewport();

// Selection and groups.
int selectCrossing();
int selectCrossingPolygon();
int selectPrompted();
int selectAll();
int selectBlocks();
int selectCircles();
int selectPolylines();
int selectEntity();
int getGroup();
int setGroupSelectable();
int sendToBack();

// Mathematics and texts.
int arcSine();
int arcCosine();
int power();
int numberOfText();
int randomBelow();

// Prompts.
int promptPoint();
int promptPointOrKeyword();
int promptCorner();

// Crossings of arcs and lines.
int intersectArcArc();
int intersectArcLine();
int intersectLineArc();

// The shell, folders and the system.
int showHelp();
int folderPath();
int openFolderAndSelect();
int shellExecute();
int screenWidth();
int screenHeight();
int computerName();
int pathIsNetworkPath();
int isFileReadOnly();
int temporaryFolder();
int registryKeys();
int newCompressedGuid();

// The main window and its status bar.
int enableMainWindow();
int disableMainWindow();
int mainWindowText();
int setMainWindowText();
int startProgressMeter();
int moveProgressMeter();
int restoreStatusBar();

// Work for another drawing.
int setToDoDrawing();
int getToDoDrawing();
int executeToDo();

}  // namespace sg
