// Stands here until the room's first class comes.
