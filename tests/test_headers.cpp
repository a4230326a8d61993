// Nothing: what counts is the precompiled headers of its target.
