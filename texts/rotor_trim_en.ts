<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en" sourcelanguage="en">
<context>
    <name></name>
    <message id="SETTINGS">
        <source>Settings</source>
        <extracomment>Tab of the configuration page</extracomment>
        <translation>Settings</translation>
    </message>
    <message id="MASS_TABLE">
        <source>Screw table</source>
        <extracomment>Tab and title of the screw page; also a label in the settings</extracomment>
        <translation>Screw table</translation>
    </message>
    <message id="NAME">
        <source>Name</source>
        <extracomment>Screw table: what stands in the name of a new row</extracomment>
        <translation>Name</translation>
    </message>
    <message id="ERROR">
        <source>Error</source>
        <extracomment>Shown where a choice has nothing to choose from</extracomment>
        <translation>Error</translation>
    </message>
    <message id="PREBAL_CONFIG">
        <source>Pre-balancing</source>
        <extracomment>Heading; the set follows: Pre-balancing Set 2 / Name: Configuration</extracomment>
        <translation>Pre-balancing</translation>
    </message>
    <message id="SET">
        <source>Set</source>
        <extracomment>Parameter set of the module; a number follows</extracomment>
        <translation>Set</translation>
    </message>
    <message id="STEP">
        <source>Step</source>
        <extracomment>A count follows: Step 3/11</extracomment>
        <translation>Step</translation>
    </message>
    <message id="RPM">
        <source>rpm</source>
        <extracomment>Unit of speed, behind a number</extracomment>
        <translation>rpm</translation>
    </message>
    <message id="CW_TEXT">
        <source>Clockwise</source>
        <translation>Clockwise</translation>
    </message>
    <message id="CCW_TEXT">
        <source>Counter-clockwise</source>
        <translation>Counter-clockwise</translation>
    </message>
    <message id="PB_PLANE_TEXT">
        <source>Plane</source>
        <extracomment>A number follows: Plane 1</extracomment>
        <translation>Plane</translation>
    </message>
    <message id="ONLINE_HELP_PREFIX">
        <source>en</source>
        <extracomment>Beginning of the help file's name. Not shown; the file of that name must exist</extracomment>
        <translation>en</translation>
    </message>
    <message id="HELP_BACK">
        <source>Back</source>
        <translation>Back</translation>
    </message>
    <message id="HELP_CONTENTS">
        <source>Contents</source>
        <translation>Contents</translation>
    </message>
    <message id="HELP_INDEX">
        <source>Index</source>
        <translation>Index</translation>
    </message>
    <message id="HELP_SEARCH">
        <source>Search</source>
        <translation>Search</translation>
    </message>
    <message id="HELP_PAGE">
        <source>Help</source>
        <translation>Help</translation>
    </message>
    <message id="HELP_CLOSE">
        <source>Close</source>
        <translation>Close</translation>
    </message>
    <message id="HELP_NOT_FOUND">
        <source>No page has "%1".</source>
        <translation>No page has "%1".</translation>
    </message>
    <message id="HELP_NO_FILE">
        <source>There is no help: the file %1 isn't in %2.</source>
        <translation>There is no help: the file %1 isn't in %2.</translation>
    </message>
    <message id="HELP_DAMAGED">
        <source>The help can't be read: the file %1 in %2 is damaged.</source>
        <translation>The help can't be read: the file %1 in %2 is damaged.</translation>
    </message>
    <message id="HELP_NO_PAGE">
        <source>There is no help page %1: it isn't in %2 in %3.</source>
        <translation>There is no help page %1: it isn't in %2 in %3.</translation>
    </message>
    <message id="HELP_NO_ADDRESS">
        <source>This is no address of a help page: %1</source>
        <translation>This is no address of a help page: %1</translation>
    </message>
    <message id="PREBALANCING_HEADER">
        <source>Pre-balancing, one plane</source>
        <extracomment>Heading of the settings</extracomment>
        <translation>Pre-balancing, one plane</translation>
    </message>
    <message id="PREBALANCING_HEADER_2LEVEL">
        <source>Pre-balancing, two planes</source>
        <extracomment>Heading of the settings</extracomment>
        <translation>Pre-balancing, two planes</translation>
    </message>
    <message id="PB_SET_CALIB_DATE">
        <source>Calibrated on</source>
        <extracomment>Label; a date follows</extracomment>
        <translation>Calibrated on</translation>
    </message>
    <message id="PB_SET_CALIB_TIME">
        <source>Calibrated at</source>
        <extracomment>Label; a time of day follows</extracomment>
        <translation>Calibrated at</translation>
    </message>
    <message id="PB_CALIBRATED_RPM_TEXT">
        <source>Calibrated speed</source>
        <extracomment>Label; half a line of the page</extracomment>
        <translation>Calibrated speed</translation>
    </message>
    <message id="PB_CURRENT_RPM_TEXT">
        <source>Current speed</source>
        <extracomment>Label; half a line of the page</extracomment>
        <translation>Current speed</translation>
    </message>
    <message id="CALIBRATION">
        <source>Calibration</source>
        <extracomment>All values of a calibration, in a list of values</extracomment>
        <translation>Calibration</translation>
    </message>
    <message id="PB_RPM_TOLERANCE_TEXT">
        <source>Speed tolerance</source>
        <extracomment>Label of a setting</extracomment>
        <translation>Speed tolerance</translation>
    </message>
    <message id="PB_UNBAL_TOLERANCE_TEXT">
        <source>Unbalance target</source>
        <extracomment>Label of a setting</extracomment>
        <translation>Unbalance target</translation>
    </message>
    <message id="MEASUREMENT_TIME">
        <source>Measuring time [s]</source>
        <extracomment>Label of a setting</extracomment>
        <translation>Measuring time [s]</translation>
    </message>
    <message id="PB_ROTATION_DIRECTION_TEXT">
        <source>Direction of rotation</source>
        <extracomment>Label of a setting; 'Plane 1' may follow</extracomment>
        <translation>Direction of rotation</translation>
    </message>
    <message id="PB_SENSOR_ADAPTATION_TEXT">
        <source>Sensor</source>
        <extracomment>Label; 'Plane 1' or 'Plane 2' may follow</extracomment>
        <translation>Sensor</translation>
    </message>
    <message id="RPM_INPUT">
        <source>Speed input</source>
        <extracomment>Label; the input by which the speed is measured</extracomment>
        <translation>Speed input</translation>
    </message>
    <message id="BALANCING_METHOD">
        <source>Balancing method</source>
        <extracomment>Label of a setting; 'Plane 1' or 'Plane 2' may follow</extracomment>
        <translation>Balancing method</translation>
    </message>
    <message id="ANGULAR_METHOD">
        <source>Movable weights</source>
        <extracomment>Choice of the balancing method</extracomment>
        <translation>Movable weights</translation>
    </message>
    <message id="FIXED_POSITION">
        <source>Screws in holes</source>
        <extracomment>Choice of the balancing method</extracomment>
        <translation>Screws in holes</translation>
    </message>
    <message id="PB_SCALINGDIRECTION_TEXT">
        <source>Direction of the scale</source>
        <extracomment>Label of a setting: the sense in which the angles on the rotor count</extracomment>
        <translation>Direction of the scale</translation>
    </message>
    <message id="NUMBER_OF_FIXED_POSITIONS">
        <source>Number of holes</source>
        <extracomment>Label of a setting</extracomment>
        <translation>Number of holes</translation>
    </message>
    <message id="NUMBER_OF_CORRECTION_MASSES">
        <source>Number of screws</source>
        <extracomment>Label of a setting: how many screws may be fitted in a plane</extracomment>
        <translation>Number of screws</translation>
    </message>
    <message id="REFERENCE_WEIGHT">
        <source>Reference weight</source>
        <extracomment>Label; a weight in grams follows</extracomment>
        <translation>Reference weight</translation>
    </message>
    <message id="PB_TERMINATE_TEXT4">
        <source>Balancing cannot go on. Press End to leave.</source>
        <extracomment>Instruction after a failure</extracomment>
        <translation>Balancing cannot go on. Press End to leave.</translation>
    </message>
    <message id="PB_STOP_SPINDLE_OR_CONFIRM_TEXT">
        <source>Stop the spindle, or confirm that the weights are in neutral position.</source>
        <extracomment>Instruction; the spindle still turns</extracomment>
        <translation>Stop the spindle, or confirm that the weights are in neutral position.</translation>
    </message>
    <message id="PB_STOP_SPINDLE_TEXT">
        <source>Stop the spindle.</source>
        <extracomment>Instruction; also a warning</extracomment>
        <translation>Stop the spindle.</translation>
    </message>
    <message id="PB_MOVE_TO_NEUTRAL_TEXTNEUTRAL">
        <source>Bring the weights to neutral position or remove the screws, then confirm.</source>
        <extracomment>Instruction</extracomment>
        <translation>Bring the weights to neutral position or remove the screws, then confirm.</translation>
    </message>
    <message id="PB_RUN_AT_SELECTED_RPM_TEXT">
        <source>Run the spindle at the calibrated speed.</source>
        <extracomment>Instruction; also a warning when the speed is off</extracomment>
        <translation>Run the spindle at the calibrated speed.</translation>
    </message>
    <message id="PB_RUN_AT_DESIRED_RPM_TEXT_NEXT">
        <source>Run the spindle at the working speed, then confirm.</source>
        <extracomment>Instruction; the speed becomes the calibrated one</extracomment>
        <translation>Run the spindle at the working speed, then confirm.</translation>
    </message>
    <message id="PB_UNBAL_MSRMNT_TEXT">
        <source>Measuring the unbalance ...</source>
        <extracomment>Instruction; nothing to be done</extracomment>
        <translation>Measuring the unbalance ...</translation>
    </message>
    <message id="PB_MOVE_TO_GIVEN_POSITION_TEXT_PBA">
        <source>Set the weights or screws as shown, then confirm.</source>
        <extracomment>Instruction</extracomment>
        <translation>Set the weights or screws as shown, then confirm.</translation>
    </message>
    <message id="PB_MAP_WEIGHTS_TO_DISPLAY">
        <source>Make the display agree with the weights on the rotor, then confirm.</source>
        <extracomment>Instruction; the operator moves the drawn weights, not the real ones</extracomment>
        <translation>Make the display agree with the weights on the rotor, then confirm.</translation>
    </message>
    <message id="SET_SWITCH">
        <source>The parameter set was changed.</source>
        <extracomment>Warning</extracomment>
        <translation>The parameter set was changed.</translation>
    </message>
    <message id="PB_CANNOT_BALANCE1">
        <source>Unbalance too large for these weights or screws</source>
        <extracomment>Warning; a percentage in brackets may follow</extracomment>
        <translation>Unbalance too large for these weights or screws</translation>
    </message>
    <message id="PB_CANNOT_BALANCE3">
        <source>The test unbalance had no measurable effect.</source>
        <extracomment>Warning</extracomment>
        <translation>The test unbalance had no measurable effect.</translation>
    </message>
    <message id="PB_REBAL_NOT_POSSIBLE">
        <source>Re-balancing impossible.</source>
        <extracomment>Warning; PB_CANNOT_BALANCE1 follows in the same line</extracomment>
        <translation>Re-balancing impossible.</translation>
    </message>
    <message id="PB_SCREW_TABLE_EMPTY">
        <source>The screw table is empty; it can't be balanced with.</source>
        <extracomment>Message box; the name of the table follows in brackets</extracomment>
        <translation>The screw table is empty; it can't be balanced with.</translation>
    </message>
    <message id="PB_SCREW_TABLE_BAD_WEIGHT">
        <source>A weight in the screw table is negative or not a number; it can't be balanced with.</source>
        <extracomment>Message box; the name of the table follows in brackets</extracomment>
        <translation>A weight in the screw table is negative or not a number; it can't be balanced with.</translation>
    </message>
    <message id="PB_TOO_FEW_HOLES">
        <source>The ring has fewer holes than screws are to be placed; it can't be balanced with.</source>
        <extracomment>Message box; the numbers of holes and of screws follow in brackets</extracomment>
        <translation>The ring has fewer holes than screws are to be placed; it can't be balanced with.</translation>
    </message>
    <message id="PB_UNBAL_OVER_LIMIT_TEXT">
        <source>The unbalance is over the target.</source>
        <extracomment>Warning after the final measurement</extracomment>
        <translation>The unbalance is over the target.</translation>
    </message>
    <message id="PB_TERMINATE_TEXT">
        <source>Speed factor is not 1: balancing is not possible with this set.</source>
        <extracomment>Warning</extracomment>
        <translation>Speed factor is not 1: balancing is not possible with this set.</translation>
    </message>
    <message id="MODULE_STATE_CHANGED">
        <source>The state of the balancing module has changed.</source>
        <extracomment>Warning</extracomment>
        <translation>The state of the balancing module has changed.</translation>
    </message>
    <message id="SK_NEXT">
        <source>Next</source>
        <extracomment>Softkey: confirm the step</extracomment>
        <translation>Next</translation>
    </message>
    <message id="SK_END">
        <source>End</source>
        <extracomment>Softkey: end the procedure</extracomment>
        <translation>End</translation>
    </message>
    <message id="SK_FINISH">
        <source>Finish</source>
        <extracomment>Softkey: end the procedure and keep its result</extracomment>
        <translation>Finish</translation>
    </message>
    <message id="SK_CHANGE_POSITIONS">
        <source>Change positions</source>
        <extracomment>Softkey</extracomment>
        <translation>Change positions</translation>
    </message>
    <message id="SK_WEIGHTS_IN_PLACE">
        <source>Weights are in place</source>
        <extracomment>Softkey: the neutral position is set already</extracomment>
        <translation>Weights are in place</translation>
    </message>
    <message id="SK_ADOPT_POSITIONS">
        <source>Take stored positions</source>
        <extracomment>Softkey: take the stored weight positions</extracomment>
        <translation>Take stored positions</translation>
    </message>
    <message id="SK_CHECK_WEIGHTS">
        <source>Check weights</source>
        <extracomment>Softkey</extracomment>
        <translation>Check weights</translation>
    </message>
    <message id="SK_REBALANCE">
        <source>Re-balance</source>
        <extracomment>Softkey</extracomment>
        <translation>Re-balance</translation>
    </message>
    <message id="SK_PREBALANCE">
        <source>Pre-balance</source>
        <extracomment>Softkey</extracomment>
        <translation>Pre-balance</translation>
    </message>
    <message id="SK_NEXT_TAB">
        <source>Next page</source>
        <extracomment>Softkey: next page of the configuration</extracomment>
        <translation>Next page</translation>
    </message>
    <message id="SK_PREVIOUS_ITEM">
        <source>Item up</source>
        <extracomment>Softkey: selects the item above</extracomment>
        <translation>Item up</translation>
    </message>
    <message id="SK_NEXT_ITEM">
        <source>Item down</source>
        <extracomment>Softkey: selects the item below</extracomment>
        <translation>Item down</translation>
    </message>
    <message id="SK_PREVIOUS_VALUE">
        <source>Value −</source>
        <extracomment>Softkey: the value before, or a smaller one</extracomment>
        <translation>Value −</translation>
    </message>
    <message id="SK_NEXT_VALUE">
        <source>Value +</source>
        <extracomment>Softkey: the value behind, or a larger one</extracomment>
        <translation>Value +</translation>
    </message>
    <message id="SK_ACCEPT">
        <source>Edit / accept</source>
        <extracomment>Softkey: begins or ends the editing of the value that is selected</extracomment>
        <translation>Edit / accept</translation>
    </message>
    <message id="SK_EXPAND">
        <source>Open / close group</source>
        <extracomment>Softkey: shows or hides what lies below the selected item</extracomment>
        <translation>Open / close group</translation>
    </message>
    <message id="SK_PREVIOUS_CELL">
        <source>Cell back</source>
        <extracomment>Softkey: screw table, the cell before</extracomment>
        <translation>Cell back</translation>
    </message>
    <message id="SK_NEXT_CELL">
        <source>Cell on</source>
        <extracomment>Softkey: screw table, the next cell</extracomment>
        <translation>Cell on</translation>
    </message>
    <message id="SK_PREVIOUS_TABLE">
        <source>Previous table</source>
        <extracomment>Softkey</extracomment>
        <translation>Previous table</translation>
    </message>
    <message id="SK_NEXT_TABLE">
        <source>Next table</source>
        <extracomment>Softkey</extracomment>
        <translation>Next table</translation>
    </message>
    <message id="SK_MORE">
        <source>More</source>
        <extracomment>Softkey: shows the other softkeys</extracomment>
        <translation>More</translation>
    </message>
    <message id="SK_HELP">
        <source>Help</source>
        <extracomment>Softkey</extracomment>
        <translation>Help</translation>
    </message>
    <message id="SK_DELETE_CONFIGURATION">
        <source>Delete configuration</source>
        <extracomment>Softkey</extracomment>
        <translation>Delete configuration</translation>
    </message>
    <message id="SK_DELETE_TABLE">
        <source>Delete table</source>
        <extracomment>Softkey</extracomment>
        <translation>Delete table</translation>
    </message>
    <message id="CONSOLE_DELETE">
        <source>Delete</source>
        <extracomment>Title of a question</extracomment>
        <translation>Delete</translation>
    </message>
    <message id="CONSOLE_KEEP">
        <source>Keep</source>
        <extracomment>Answer to the question whether something is to be deleted</extracomment>
        <translation>Keep</translation>
    </message>
    <message id="CONSOLE_ASK_DELETE_CONFIGURATION">
        <source>Delete the configuration "%1"? Its values and its calibration are gone then.</source>
        <extracomment>%1 its name</extracomment>
        <translation>Delete the configuration "%1"? Its values and its calibration are gone then.</translation>
    </message>
    <message id="CONSOLE_ASK_DELETE_TABLE">
        <source>Delete the screw table "%1"?</source>
        <extracomment>%1 its name</extracomment>
        <translation>Delete the screw table "%1"?</translation>
    </message>
    <message id="CONSOLE_DISAGREES">
        <source>The configuration "%1" and the rotor file disagree in: %2. The configuration counts; --commission sets it up from the rotor file.</source>
        <extracomment>%1 name of the configuration, %2 labels of values</extracomment>
        <translation>The configuration "%1" and the rotor file disagree in: %2. The configuration counts; --commission sets it up from the rotor file.</translation>
    </message>
    <message id="SK_PLUS">
        <source>+</source>
        <extracomment>Softkey: turn the weight forwards</extracomment>
        <translation>+</translation>
    </message>
    <message id="SK_MINUS">
        <source>−</source>
        <extracomment>Softkey: turn the weight backwards</extracomment>
        <translation>−</translation>
    </message>
    <message id="SK_SELECT_WEIGHT">
        <source>Weight 1/2</source>
        <extracomment>Softkey: choose the weight to move</extracomment>
        <translation>Weight 1/2</translation>
    </message>
    <message id="SK_SELECT_STEP">
        <source>Step 1°/10°</source>
        <extracomment>Softkey: choose how far a weight moves</extracomment>
        <translation>Step 1°/10°</translation>
    </message>
    <message id="SK_WEIGHT1_PLUS">
        <source>Weight 1 +</source>
        <extracomment>Softkey</extracomment>
        <translation>Weight 1 +</translation>
    </message>
    <message id="SK_WEIGHT1_MINUS">
        <source>Weight 1 −</source>
        <extracomment>Softkey</extracomment>
        <translation>Weight 1 −</translation>
    </message>
    <message id="SK_WEIGHT2_PLUS">
        <source>Weight 2 +</source>
        <extracomment>Softkey</extracomment>
        <translation>Weight 2 +</translation>
    </message>
    <message id="SK_WEIGHT2_MINUS">
        <source>Weight 2 −</source>
        <extracomment>Softkey</extracomment>
        <translation>Weight 2 −</translation>
    </message>
    <message id="CONSOLE_MACHINE">
        <source>Simulated machine</source>
        <extracomment>Console: heading of the panel that stands for the machine</extracomment>
        <translation>Simulated machine</translation>
    </message>
    <message id="CONSOLE_SPEED">
        <source>Speed</source>
        <extracomment>Console</extracomment>
        <translation>Speed</translation>
    </message>
    <message id="CONSOLE_START">
        <source>Start spindle</source>
        <extracomment>Console: button</extracomment>
        <translation>Start spindle</translation>
    </message>
    <message id="CONSOLE_STOP">
        <source>Stop spindle</source>
        <extracomment>Console: button</extracomment>
        <translation>Stop spindle</translation>
    </message>
    <message id="CONSOLE_LOCKED">
        <source>locked</source>
        <extracomment>Console: the electronics follows the speed</extracomment>
        <translation>locked</translation>
    </message>
    <message id="CONSOLE_NOT_LOCKED">
        <source>not locked</source>
        <extracomment>Console</extracomment>
        <translation>not locked</translation>
    </message>
    <message id="CONSOLE_WEIGHTS">
        <source>Weights at</source>
        <extracomment>Console: angles of the fitted weights follow</extracomment>
        <translation>Weights at</translation>
    </message>
    <message id="CONSOLE_FIT">
        <source>Fit as shown</source>
        <extracomment>Console: button that puts the weights where the page shows them</extracomment>
        <translation>Fit as shown</translation>
    </message>
    <message id="CONSOLE_RESIDUAL">
        <source>True unbalance</source>
        <extracomment>Console: what the simulated rotor really has left</extracomment>
        <translation>True unbalance</translation>
    </message>
    <message id="CONSOLE_WAITING">
        <source>Waiting for the balancing module at %1, address %2…</source>
        <extracomment>Console: until the module answers; link and addresses are filled in</extracomment>
        <translation>Waiting for the balancing module at %1, address %2…</translation>
    </message>
    <message id="CONSOLE_NO_LINK">
        <source>No connection to %1 (module address %2); it is tried again.</source>
        <extracomment>Console: link and addresses are filled in, the reason follows</extracomment>
        <translation>No connection to %1 (module address %2); it is tried again.</translation>
    </message>
    <message id="CONSOLE_NOT_WRITTEN">
        <source>The file %1 cannot be written.</source>
        <extracomment>Console: report or picture</extracomment>
        <translation>The file %1 cannot be written.</translation>
    </message>
    <message id="CONSOLE_NOT_STARTED">
        <source>The procedure did not start; the log says why.</source>
        <extracomment>Console: the command line asked for a procedure</extracomment>
        <translation>The procedure did not start; the log says why.</translation>
    </message>
    <message id="CONSOLE_NOT_CALIBRATED">
        <source>Re-balancing is not possible yet: the configuration is not calibrated.</source>
        <extracomment>Console: the command line asked for a re-balancing</extracomment>
        <translation>Re-balancing is not possible yet: the configuration is not calibrated.</translation>
    </message>
    <message id="SK_TOGGLE_PLANE">
        <source>Other plane</source>
        <extracomment>Softkey: make the other plane the active one</extracomment>
        <translation>Other plane</translation>
    </message>
    <message id="SK_CHANGE_SCREWS">
        <source>Change screws</source>
        <extracomment>Softkey: choose other screws than shown</extracomment>
        <translation>Change screws</translation>
    </message>
    <message id="SK_NEXT_SCREW">
        <source>Next screw</source>
        <extracomment>Softkey: the next screw of the table serves as the test screw</extracomment>
        <translation>Next screw</translation>
    </message>
    <message id="SK_PREVIOUS_SCREW">
        <source>Previous screw</source>
        <extracomment>Softkey: the one before in the table serves as the test screw</extracomment>
        <translation>Previous screw</translation>
    </message>
    <message id="SK_NO_SCREWS">
        <source>No screws</source>
        <extracomment>Softkey: all screws are out</extracomment>
        <translation>No screws</translation>
    </message>
    <message id="RESULT_NOT_SAVED">
        <source>The calibration of "%s" was not saved: %s.
It is kept in memory. Put the cause right, then press Finish once more.</source>
        <extracomment>Message box: configuration, then why</extracomment>
        <translation>The calibration of "%s" was not saved: %s.
It is kept in memory. Put the cause right, then press Finish once more.</translation>
    </message>
    <message id="RESULT_STILL_NOT_SAVED">
        <source>The calibration of "%s" is still not saved: %s.
It is kept in memory while the console runs, and every save tries again.</source>
        <extracomment>Message box: configuration, then why; the run ends</extracomment>
        <translation>The calibration of "%s" is still not saved: %s.
It is kept in memory while the console runs, and every save tries again.</translation>
    </message>
    <message id="RESULT_SUPERSEDED">
        <source>The calibration of "%s" was not saved: another console has changed this configuration meanwhile, and what is stored stays. Balance again with it.</source>
        <extracomment>Message box: configuration</extracomment>
        <translation>The calibration of "%s" was not saved: another console has changed this configuration meanwhile, and what is stored stays. Balance again with it.</translation>
    </message>
    <message id="CONFIGURATION_NOT_SAVED">
        <source>The changes of configuration "%s" were not saved: %s.
They are kept in memory; the next save tries again.</source>
        <extracomment>Message box: configuration, then why</extracomment>
        <translation>The changes of configuration "%s" were not saved: %s.
They are kept in memory; the next save tries again.</translation>
    </message>
    <message id="SCREW_TABLE_NOT_SAVED">
        <source>The screw table "%s" was not saved: %s.</source>
        <extracomment>Message box: screw table, then why</extracomment>
        <translation>The screw table "%s" was not saved: %s.</translation>
    </message>
    <message id="STORED_VALUES_STAY">
        <source>"%s" was changed here and by another console. These stay as they are stored: %s.</source>
        <extracomment>Message box: configuration or screw table, then the names of values</extracomment>
        <translation>"%s" was changed here and by another console. These stay as they are stored: %s.</translation>
    </message>
    <message id="CONFIGURATION_NOT_READ">
        <source>The configuration "%s" can't be read: %s.
The page shows a new one; what is stored stays as it is.</source>
        <extracomment>Message box: configuration, then why</extracomment>
        <translation>The configuration "%s" can't be read: %s.
The page shows a new one; what is stored stays as it is.</translation>
    </message>
    <message id="VALUES_LEFT_OUT">
        <source>Values of configuration "%s" can't be right, and it counts as not calibrated: %s.</source>
        <extracomment>Message box: configuration, then what is wrong with which value</extracomment>
        <translation>Values of configuration "%s" can't be right, and it counts as not calibrated: %s.</translation>
    </message>
    <message id="STORE_FULL">
        <source>no room is left on the disk</source>
        <extracomment>Why something was not saved; the system's own words follow</extracomment>
        <translation>no room is left on the disk</translation>
    </message>
    <message id="STORE_READ_ONLY">
        <source>the database may not be written</source>
        <extracomment>Why something was not saved; the system's own words follow</extracomment>
        <translation>the database may not be written</translation>
    </message>
    <message id="STORE_LOCKED">
        <source>another program holds the database locked</source>
        <extracomment>Why something was not saved; the system's own words follow</extracomment>
        <translation>another program holds the database locked</translation>
    </message>
    <message id="STORE_UNREACHABLE">
        <source>the database can't be reached</source>
        <extracomment>Why something was not saved; the system's own words follow</extracomment>
        <translation>the database can't be reached</translation>
    </message>
    <message id="STORE_NO_ANSWER">
        <source>the database doesn't answer</source>
        <extracomment>Why something was not saved; the system's own words follow</extracomment>
        <translation>the database doesn't answer</translation>
    </message>
    <message id="PREBALANCING_HEADER_INFO">
        <source>The values that a balancing is done with. A changed direction or method needs a new pre-balancing.</source>
        <extracomment>Info pane of the settings page, heading</extracomment>
        <translation>The values that a balancing is done with. A changed direction or method needs a new pre-balancing.</translation>
    </message>
    <message id="PB_SET_CALIB_DATE_INFO">
        <source>The day of the pre-balancing that a re-balancing goes on from.</source>
        <extracomment>Info pane of the settings page</extracomment>
        <translation>The day of the pre-balancing that a re-balancing goes on from.</translation>
    </message>
    <message id="PB_SET_CALIB_TIME_INFO">
        <source>The time of day of that pre-balancing.</source>
        <extracomment>Info pane of the settings page</extracomment>
        <translation>The time of day of that pre-balancing.</translation>
    </message>
    <message id="PB_CALIBRATED_RPM_TEXT_INFO">
        <source>Revolutions in a minute. Measure again at this speed only: the calibration holds for no other.</source>
        <extracomment>Info pane of the settings page</extracomment>
        <translation>Revolutions in a minute. Measure again at this speed only: the calibration holds for no other.</translation>
    </message>
    <message id="PB_RPM_TOLERANCE_TEXT_INFO">
        <source>How far the speed may be off while measuring. Too small: measuring never begins. Too large: wrong results.</source>
        <extracomment>Info pane of the settings page</extracomment>
        <translation>How far the speed may be off while measuring. Too small: measuring never begins. Too large: wrong results.</translation>
    </message>
    <message id="PB_UNBAL_TOLERANCE_TEXT_INFO">
        <source>The rotor is good when its unbalance is no larger. Too small: the target is never reached.</source>
        <extracomment>Info pane of the settings page</extracomment>
        <translation>The rotor is good when its unbalance is no larger. Too small: the target is never reached.</translation>
    </message>
    <message id="MEASUREMENT_TIME_INFO">
        <source>The reading is averaged over this time. Longer: steadier, but slower.</source>
        <extracomment>Info pane of the settings page</extracomment>
        <translation>The reading is averaged over this time. Longer: steadier, but slower.</translation>
    </message>
    <message id="PB_ROTATION_DIRECTION_TEXT_INFO">
        <source>As seen from the end of the plane. A wrong one doubles the unbalance. A change clears the calibration.</source>
        <extracomment>Info pane of the settings page</extracomment>
        <translation>As seen from the end of the plane. A wrong one doubles the unbalance. A change clears the calibration.</translation>
    </message>
    <message id="PB_SENSOR_ADAPTATION_TEXT_INFO">
        <source>How the module is adapted to its sensor. Set at the module.</source>
        <extracomment>Info pane of the settings page</extracomment>
        <translation>How the module is adapted to its sensor. Set at the module.</translation>
    </message>
    <message id="RPM_INPUT_INFO">
        <source>The input that the speed is measured at. Set at the module.</source>
        <extracomment>Info pane of the settings page</extracomment>
        <translation>The input that the speed is measured at. Set at the module.</translation>
    </message>
    <message id="INV_INFO">
        <source>How the rotor answers to weights, found by the calibration. For service.</source>
        <extracomment>Info pane of the settings page: a number that the calibration has found</extracomment>
        <translation>How the rotor answers to weights, found by the calibration. For service.</translation>
    </message>
    <message id="UA_INFO">
        <source>The compensation that stands on the rotor, found by the last run. For service.</source>
        <extracomment>Info pane of the settings page: a number that the calibration has found</extracomment>
        <translation>The compensation that stands on the rotor, found by the last run. For service.</translation>
    </message>
    <message id="BALANCING_METHOD_INFO">
        <source>What is set on the rotor: two weights that are moved, or screws in holes. A change clears the calibration.</source>
        <extracomment>Info pane of the settings page</extracomment>
        <translation>What is set on the rotor: two weights that are moved, or screws in holes. A change clears the calibration.</translation>
    </message>
    <message id="PB_SCALINGDIRECTION_TEXT_INFO">
        <source>The sense in which degrees or holes are counted on the rotor. A change clears the calibration.</source>
        <extracomment>Info pane of the settings page</extracomment>
        <translation>The sense in which degrees or holes are counted on the rotor. A change clears the calibration.</translation>
    </message>
    <message id="MASS_TABLE_INFO">
        <source>The screws that there are for this rotor. They are edited on the next page.</source>
        <extracomment>Info pane of the settings page</extracomment>
        <translation>The screws that there are for this rotor. They are edited on the next page.</translation>
    </message>
    <message id="NUMBER_OF_FIXED_POSITIONS_INFO">
        <source>Holes in the ring, evenly spread. A wrong number: screws go to wrong places.</source>
        <extracomment>Info pane of the settings page</extracomment>
        <translation>Holes in the ring, evenly spread. A wrong number: screws go to wrong places.</translation>
    </message>
    <message id="NUMBER_OF_CORRECTION_MASSES_INFO">
        <source>Screws of one correction. Three come closer to the target than two.</source>
        <extracomment>Info pane of the settings page</extracomment>
        <translation>Screws of one correction. Three come closer to the target than two.</translation>
    </message>
    <message id="REFERENCE_WEIGHT_INFO">
        <source>The test screw that the calibration was made with.</source>
        <extracomment>Info pane of the settings page</extracomment>
        <translation>The test screw that the calibration was made with.</translation>
    </message>
    <message id="PB_CALIBRATED">
        <source>Calibrated</source>
        <extracomment>State line of the settings page; date, time and speed follow</extracomment>
        <translation>Calibrated</translation>
    </message>
    <message id="PB_NOT_CALIBRATED">
        <source>Not calibrated: pre-balance first</source>
        <extracomment>State line of the settings page</extracomment>
        <translation>Not calibrated: pre-balance first</translation>
    </message>
    <message id="PB_CALIBRATION_RESET">
        <source>Changed: calibration no longer valid</source>
        <extracomment>State line of the settings page: a change that the calibration doesn't outlast is not saved yet</extracomment>
        <translation>Changed: calibration no longer valid</translation>
    </message>
    <message id="PB_VALUE_CORRECTED">
        <source>Corrected to the limit. Stored was</source>
        <extracomment>Info pane of the settings page, before a stored value that lies beyond the limits</extracomment>
        <translation>Corrected to the limit. Stored was</translation>
    </message>
    <message id="PB_TABLE_MISSING">
        <source>This table is no longer there. Choose another one; until then nothing can be saved.</source>
        <extracomment>Info pane of the settings page: the screw table that the configuration names isn't there</extracomment>
        <translation>This table is no longer there. Choose another one; until then nothing can be saved.</translation>
    </message>
    <message id="NAME_EMPTY">
        <source>Nothing is kept without a name: type 1 to %s characters.
"%s" stays.</source>
        <extracomment>Message box: the longest name, then the name that stays</extracomment>
        <translation>Nothing is kept without a name: type 1 to %s characters.
"%s" stays.</translation>
    </message>
    <message id="NAME_TOO_LONG">
        <source>The name "%s" is too long: it may have %s characters.
"%s" stays.</source>
        <extracomment>Message box: what was typed, the longest name, the name that stays</extracomment>
        <translation>The name "%s" is too long: it may have %s characters.
"%s" stays.</translation>
    </message>
    <message id="NAME_NOT_TEXT">
        <source>What was entered as a name is no text (no valid UTF-8): type it anew.
"%s" stays.</source>
        <extracomment>Message box: the name that stays</extracomment>
        <translation>What was entered as a name is no text (no valid UTF-8): type it anew.
"%s" stays.</translation>
    </message>
    <message id="NAME_TAKEN">
        <source>There is a "%s" already: type another name, or step to that one by the arrows beside the name.
"%s" stays.</source>
        <extracomment>Message box: what was typed, the name that stays</extracomment>
        <translation>There is a "%s" already: type another name, or step to that one by the arrows beside the name.
"%s" stays.</translation>
    </message>
    <message id="NAME_NOT_STORED">
        <source>"%s" was not made: %s.
"%s" stays, and nothing is lost.</source>
        <extracomment>Message box: what was typed, why, the name that stays</extracomment>
        <translation>"%s" was not made: %s.
"%s" stays, and nothing is lost.</translation>
    </message>
    <message id="NAMES_LEFT_OUT">
        <source>Names in the database are no text (no valid UTF-8); what they name can't be used: %s.</source>
        <extracomment>Message box: the names</extracomment>
        <translation>Names in the database are no text (no valid UTF-8); what they name can't be used: %s.</translation>
    </message>
    <message id="DELETE_DEFAULT">
        <source>"%s" is always there and can't be deleted.</source>
        <extracomment>Message box: configuration or screw table</extracomment>
        <translation>"%s" is always there and can't be deleted.</translation>
    </message>
    <message id="DELETE_IN_USE">
        <source>The screw table "%s" was not deleted: %s uses it. Choose another table there first.</source>
        <extracomment>Message box: screw table, then the configurations that use it</extracomment>
        <translation>The screw table "%s" was not deleted: %s uses it. Choose another table there first.</translation>
    </message>
    <message id="DELETE_MISSING">
        <source>There is no "%s" any more.</source>
        <extracomment>Message box: configuration or screw table</extracomment>
        <translation>There is no "%s" any more.</translation>
    </message>
    <message id="DELETE_FAILED">
        <source>"%s" was not deleted: %s.</source>
        <extracomment>Message box: configuration or screw table, then why</extracomment>
        <translation>"%s" was not deleted: %s.</translation>
    </message>
</context>
</TS>
