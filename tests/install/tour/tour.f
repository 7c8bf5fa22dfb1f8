C     The tour of tour.c in fixed-form Fortran: the same lines, through
C     the installed module xun and the constants of the xunDefine.f77
C     that xun includes --fixed-form wrote.
      PROGRAM TOUR
      USE, INTRINSIC :: ISO_C_BINDING, ONLY: C_INT, C_DOUBLE, C_INT64_T
      USE XUN
      IMPLICIT NONE
      INCLUDE 'xunDefine.f77'
      INTEGER(C_INT) ITEM, FILTER, FIRST, N, SEQ, TAG, USER, MATCH
      INTEGER(C_INT) EQV, CONV, I
      REAL(C_DOUBLE) X, FACTOR, BEFORE(4), VALUES(4), MISS
      LOGICAL SAME, OK
      CHARACTER(LEN=:), ALLOCATABLE :: TEXT
      PARAMETER (MISS = -999.0D0)
      DATA BEFORE /1.0D0, -999.0D0, 2.5D0, 10.0D0/

      CALL XUN_LOAD()
      IF (.NOT. XUN_ITEM_TYPE_KEY_FROM_IDENT('ItemWaterLevel', ITEM))
     &  STOP 1
      IF (ITEM .NE. ItemWaterLevel) STOP 1
      N = xunGetItemUnitCount(ITEM)
      PRINT '(A,I0,A)', 'item ItemWaterLevel: ', N, ' units'
      DO 10 SEQ = 1, N
        TEXT = XUN_ITEM_UNIT_SEQ(ITEM, SEQ, TAG)
        PRINT '(A,I0,A,A)', '  ', TAG, ' ', XUN_UNIT_IDENT(TAG)
   10 CONTINUE

      OK = XUN_FILTER_KEY_FROM_IDENT('FilterHydrology', FILTER)
      TEXT = XUN_FILTERED_ITEM_TYPE_SEQ(FILTER, 1, FIRST)
      IF (XUN_ITEM_FILTER_EQV(ITEM, FILTER)) THEN
        TEXT = 'in it'
      ELSE
        TEXT = 'not in it'
      END IF
      PRINT '(A,I0,A,A,A,A)', 'filter FilterHydrology: ',
     &  xunGetFilteredItemTypeCount(FILTER), ' item types, the first ',
     &  XUN_ITEM_TYPE_IDENT(FIRST), ', ItemWaterLevel ', TEXT

      OK = XUN_SUCCESS(xunSetItemUserUnit(ITEM, UnitFoot))
      OK = XUN_SUCCESS(xunGetItemUserUnit(ITEM, USER))
      OK = XUN_SUCCESS(xunConvertToUserUnit(ITEM, UnitMeter, X, 1.0D0))
      PRINT '(A,A,A,I0,A)', 'user unit of ItemWaterLevel: ',
     &  XUN_UNIT_IDENT(USER), '; 1 m = ',
     &  NINT(X * 1.0D6, KIND=C_INT64_T), ' millionths'

      VALUES = BEFORE
      OK = XUN_SUCCESS(xunConvertItemArrayToUserUnitD(ITEM, UnitMeter,
     &  VALUES, 4, MISS))
      CONV = 0
      SAME = .TRUE.
      DO 20 I = 1, 4
        IF (BEFORE(I) .EQ. MISS) THEN
          SAME = SAME .AND. VALUES(I) .EQ. MISS
        ELSE
          OK = XUN_SUCCESS(xunConvertToUserUnit(ITEM, UnitMeter, X,
     &      BEFORE(I)))
          SAME = SAME .AND. VALUES(I) .EQ. X
          IF (VALUES(I) .NE. BEFORE(I)) CONV = CONV + 1
        END IF
   20 CONTINUE
      IF (SAME) THEN
        TEXT = 'yes'
      ELSE
        TEXT = 'no'
      END IF
      PRINT '(A,I0,A,A)', 'array: ', CONV, ' of 4 converted, -999 kept',
     &  ' and each as converted alone: '//TEXT

      OK = XUN_SUCCESS(xunUnitMultiply(UnitMeter, UnitMeter, MATCH,
     &  EQV, FACTOR))
      TEXT = 'derived: m*m = '//XUN_UNIT_IDENT(MATCH)
      OK = XUN_SUCCESS(xunUnitDivide(UnitMeter, UnitSecond, MATCH, EQV,
     &  FACTOR))
      TEXT = TEXT//', m/s = '//XUN_UNIT_IDENT(MATCH)
      OK = XUN_SUCCESS(xunUnitPower(UnitFoot, MATCH, EQV, FACTOR,
     &  2.0D0))
      PRINT '(A,A,A,A,A,A,I0,A)', TEXT, ', ft^2 = ',
     &  XUN_UNIT_IDENT(MATCH), ' (', XUN_UNIT_IDENT(EQV), ' times ',
     &  NINT(FACTOR * 1.0D9, KIND=C_INT64_T), ' billionths)'
      END
