// The menu tree, the tool bar and the palette of the main window, by the
// program's command names.

export type Entry = [command: string, label: string] | "-";

export const MENUS: [name: string, label: string, entries: Entry[]][] = [
  ["mnuFile", "File", [
    ["mnuFileOpen", "Open..."], ["mnuFileSave", "Save"], ["mnuFileSaveAs", "Save As..."], ["mnuFileClose", "Close"], "-",
    ["mnuFileImport", "Import..."], "-",
    ["mnuFilePrint", "Print..."], ["mnuFileDSetup", "Drawing setup..."],
    ["mnuFileSaveClient", "Save drawing as SVG"], ["mnuFileSaveBMP", "Save drawing as PNG"], ["mnuFileSaveClip", "Save clipboard picture"], "-",
    ["mnuFileExit", "Exit"],
  ]],
  ["mnuEdit", "Edit", [
    ["mnuEditUndo", "Undo\tCtrl+Z"], ["mnuEditRedo", "Redo\tCtrl+Y"], "-",
    ["mnuEditAddFeed", "Add Feed"], ["mnuEditAddProd", "Add Product"], ["mnuEditAddPipe", "Add Pipe"],
    ["mnuEditAddValve", "Add Control Valve"], ["mnuEditAddCheck", "Add Check Valve"], ["mnuEditAddPump", "Add Pump"],
    ["mnuEditAddComp", "Add Compressor"], ["mnuEditAddFO", "Add Orifice"], ["mnuEditAddHX", "Add Exchanger"],
    ["mnuEditAddMisc", "Add Miscellaneous"], ["mnuEditAddExpand", "Add Expander/Reducer"], ["mnuEditAddSplit", "Add Mixer/Splitter"],
    ["mnuEditAddTee", "Add Tee"], ["mnuEditAddVessel", "Add Vessel"], ["mnuEditAddText", "Add Text/Line"],
    ["mnuEditAddBend", "Add Bend"], "-",
    ["mnuEditEquip", "Edit Equipment...\tEnter"], ["mnuEditFluid", "Edit Fluid..."], "-",
    ["mnuEditPipeCopy", "Copy pipe data to selected pipes"], ["mnuEditPipeDiaClear", "Clear pipe diameters"],
    ["mnuEditPipeDiaSet", "Set pipe diameters to calculated"], ["mnuEditSizing", "Line sizing"], "-",
    ["mnuEditCopy", "Copy\tCtrl+C"], ["mnuEditPaste", "Paste\tCtrl+V"], ["mnuEditDel", "Delete\tDel"],
    ["mnuEditSelectAll", "Select All"], ["mnuEditDeselect", "Deselect\tEsc"], ["mnuEditFind", "Find..."], "-",
    ["mnuEditRot", "Rotate 90"], ["mnuEditRotate", "Rotate -90"],
    ["mnuEditFlipX", "Flip horizontal"], ["mnuEditFlipY", "Flip vertical"],
    ["mnuEditFlipXY", "Horizontal flip: normal"], ["mnuEditFlipXN", "Horizontal flip: mirrored"],
    ["mnuEditFlipYY", "Vertical flip: normal"], ["mnuEditFlipYN", "Vertical flip: mirrored"],
    ["mnuEditLabelY", "Show label"], ["mnuEditLabelN", "Hide label"], ["mnuEditIkon", "Icon..."],
  ]],
  ["mnuView", "View", [
    ["mnuViewNormal", "Normal"], ["mnuViewSpec", "Specifications"], ["mnuViewResult", "Results"], "-",
    ["mnuViewRedraw", "Redraw"], ["mnuViewResetColor", "Reset colour"], ["mnuViewDraw", "Enable/disable drawing"], "-",
    ["pageColourVel", "Colour pipes by velocity"], ["pageColourDpl", "Colour pipes by dP/100"], ["pageColourOff", "Pipes in their own colour"],
  ]],
  ["mnuRun", "Run", [
    ["mnuRunSpec", "Specifications count"], "-",
    ["mnuRunSimRun", "Run"], ["mnuRunSimResume", "Resume"], ["mnuRunSimStop", "Stop"], "-",
    ["mnuRunResultsView", "View hydraulic report"], ["mnuRunResultsSave", "Save hydraulic report..."],
    ["mnuRunLogView", "View run log"], ["mnuRunLogSave", "Save run log..."],
  ]],
  ["mnuProcess", "Process", [
    ["mnuProcessHWB", "Heat and mole balance"], ["mnuProcessHydrHWB", "Hydraulics and heat and mole balance"],
    ["mnuProcessRun", "Run balance"], ["mnuProcessPseudo", "Pseudo components..."], "-",
    ["mnuProcessView", "View balance report"], ["mnuProcessSave", "Save balance report..."],
  ]],
  ["mnuOptions", "Options", [
    ["mnuOptionsDef", "Defaults..."], ["mnuOptionsCalcs", "Calculation methods..."], ["mnuOptionsCases", "Cases..."],
    ["mnuOptionsTitle", "Title block..."], ["mnuOptionsKomp", "Components..."], ["mnuOptionsProp", "Properties..."],
    ["mnuOptionsPData", "Pipe data..."], "-",
    ["mnuOptionsLines", "Pipe template..."], ["mnuOptionsFeeds", "Feed template..."], ["mnuOptionsProducts", "Product template..."],
    ["mnuOptionsValves", "Valve template..."], ["mnuOptionsChecks", "Check valve template..."], ["mnuOptionsPumps", "Pump template..."],
    ["mnuOptionsComp", "Compressor template..."], ["mnuOptionsFO", "Orifice template..."], ["mnuOptionsHX", "Exchanger template..."],
    ["mnuOptionsMisc", "Miscellaneous template..."], ["mnuOptionsExpand", "Expander template..."], ["mnuOptionsTee", "Tee template..."],
    ["mnuOptionsSplit", "Mixer/Splitter template..."], ["mnuOptionsVessels", "Vessel template..."],
  ]],
  ["mnuHelp", "Help", [["mnuHelpHelp", "Help"], ["mnuHelpSupport", "Support"], ["mnuHelpAbout", "About"]]],
];

export const POPUP: Entry[] = [
  ["mnuPopEdit", "Edit..."], ["mnuPopFluid", "Fluid..."], "-", ["mnuPopCopy", "Copy"], ["mnuPopPaste", "Paste"],
  ["mnuPopDelete", "Delete"], "-", ["mnuPopRot", "Rotate 90"], ["mnuPopRotate", "Rotate -90"], ["mnuPopFlipX", "Flip horizontal"],
  ["mnuPopFlipY", "Flip vertical"], ["mnuPopLabel", "Show label"], ["mnuPopIkon", "Icon..."], ["mnuPopBendAdd", "Add bend"], "-",
  ["mnuPopSelectAll", "Select All"], ["mnuPopDeselect", "Deselect"], ["mnuPopCancel", "Cancel"],
];

// Tool bar buttons: command, label, tool tip.
export const TOOLBAR: [string, string, string][] = [
  ["mnuFileOpen", "Open", "Open an existing hydraulics file."],
  ["mnuFileSave", "Save", "Save current hydraulics file."],
  ["mnuFilePrint", "Print", "Print current hydraulics drawing."],
  ["mnuRunSimRun", "Run", "Run/Resume Hydraulics."],
  ["mnuRunResultsView", "Report", "Open Hydraulic report in editor."],
  ["mnuRunSimStop", "Stop", "Stop current run (May take some time to stop)."],
  ["mnuViewSpec", "Specs", "Show/Hide hydraulic specifications on drawing (Specified)."],
  ["mnuViewResult", "Results", "Show/Hide results on drawing."],
  ["mnuProcessHydrHWB", "Run HMB", "Run Hydraulics and Heat and Mole Balance."],
  ["mnuProcessView", "HMB report", "Open Heat and Mole Balance report in editor."],
  ["mnuViewDraw", "Drawing", "Enable/disable drawing."],
  ["mnuEditUndo", "Undo", "Undo the last edit (Ctrl+Z)."],
  ["mnuEditRedo", "Redo", "Redo the edit undone (Ctrl+Y)."],
];

export const ZOOMS = ["50", "75", "100", "125", "150", "200", "300", "500"];
export const ZOOM_TIP = "Zoom drawing in or out.";
export const PALETTE_TIP = "Click to select, then click again on drawing area to create.";

// Palette tools: name and DrawAction.
export const PALETTE: [string, number][] = [
  ["Pipe", 49], ["Feed", 50], ["Product", 51], ["Control Valve", 52], ["Check Valve", 53], ["Pump", 54],
  ["Compressor", 55], ["Orifice", 56], ["Exchanger", 57], ["Miscellaneous", 62], ["Expander/Reducer/Junction", 58],
  ["Mixer/Splitter", 59], ["Tee", 60], ["Vessel", 61], ["Text/Line", 63],
];
