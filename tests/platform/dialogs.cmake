# dialogs tests: filled in by its own change.
