"""Progress of a simulation: a tqdm bar when tqdm is installed, or the caller's
function."""

import contextlib


@contextlib.contextmanager
def progress_function(progress):
    """Yields the function handed to the library for ``progress``: True for a
    tqdm bar (nothing without tqdm), False or None for nothing, or a callable of
    (realization, nrealization, percent of the realization, percent of the job)."""
    if callable(progress):
        yield progress
        return
    if not progress:
        yield None
        return
    try:
        from tqdm import tqdm
    except ImportError:
        yield None
        return
    with tqdm(total=100, unit="%", desc="simulating", leave=False) as bar:
        def advance(realization, nrealization, percent, total):
            bar.set_postfix_str(f"realization {realization + 1} of {nrealization}")
            bar.update(total - bar.n)
        yield advance
