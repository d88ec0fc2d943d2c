#pragma once

class MyInputPanelContext;

/// Makes the toolkit ask for the platform input context of this program, whatever the environment
/// names. Call it before the application object exists.
void selectInputContextPlugin();

/// Makes @p context the application's input method; with nullptr there is none, as at the start.
void installInputContext(MyInputPanelContext *context);
