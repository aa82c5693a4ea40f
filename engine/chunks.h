// Sprite chunk walks: filled in by the chunk viewer change.
#pragma once
