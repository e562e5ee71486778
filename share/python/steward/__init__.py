# SPDX-License-Identifier: GPL-2.0-or-later
"""The body of the script: one module a concern, no module-level work on import."""
