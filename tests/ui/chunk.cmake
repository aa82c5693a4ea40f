# Chunk viewer tests: filled in by its own change.
