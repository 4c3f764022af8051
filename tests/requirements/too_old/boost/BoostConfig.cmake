# A Boost that is found and too old.
