# The chunk viewer: filled in by its own change.
