"""What a folder holds."""


def tree(folder):
    """Relative path to bytes of every file below."""
    return {str(p.relative_to(folder)): p.read_bytes() for p in sorted(folder.rglob("*")) if p.is_file()}
