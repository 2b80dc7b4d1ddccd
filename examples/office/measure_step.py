"""Measures the solids of a STEP file with FreeCAD: freecadcmd measure_step.py

The file is the one that STEP_FILE of the environment names. Prints a line for each solid: "solid",
whether it is valid and closed (1 or 0), its volume, and the corners of the box about it.
"""

import os

import Part

for solid in Part.read(os.environ["STEP_FILE"]).Solids:
    box = solid.optimalBoundingBox(False)
    whole = solid.isValid() and all(shell.isClosed() for shell in solid.Shells)
    print("solid", int(whole), solid.Volume,
          box.XMin, box.YMin, box.ZMin, box.XMax, box.YMax, box.ZMax)
