# windows: filled in by its own change.
