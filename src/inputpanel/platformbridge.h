#pragma once

class MyInputPanelContext;

/// Makes Qt use this program's platform input context, regardless of the environment. Must be
/// called before the application object is created.
void selectInputContextPlugin();

/// Makes @p context the application's input method. Pass nullptr to remove it. The caller keeps
/// ownership.
void installInputContext(MyInputPanelContext *context);
