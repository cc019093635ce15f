# SPDX-License-Identifier: MIT
"""Geometry of the channel's own models: solids, and one module for each family of models."""
